#include "Dictation/TextPiece.h"

#include <QTextBoundaryFinder>

namespace vesk::TextPiece {

namespace {

constexpr char32_t LastLatinLetter = 0x2ff; // combining marks begin behind it
constexpr QChar Joiner = u'\u200d';

/// Joins with neighbours into one character: pictographs, flags, marks, joiners, halves of surrogate pairs.
bool mayJoin(char32_t codePoint)
{
    if (codePoint <= LastLatinLetter) {
        return false;
    }
    return !QChar::isLetterOrNumber(codePoint) && !QChar::isPunct(codePoint) && !QChar::isSpace(codePoint);
}

/// The last cluster of a text could go on with what follows; the first could have begun before.
bool mayBeTorn(const QString &cluster)
{
    const QList<uint> codePoints = cluster.toUcs4();
    return codePoints.size() != 1 || mayJoin(codePoints.first());
}

/// Where the code point with this number begins, at or after a known place.
qsizetype advanced(const QString &text, qsizetype place, qint64 codePoints)
{
    for (; codePoints > 0 && place < text.size(); --codePoints) {
        const bool isPair = text.at(place).isHighSurrogate() && place + 1 < text.size()
            && text.at(place + 1).isLowSurrogate();
        place += isPair ? 2 : 1;
    }
    return place;
}

/// A cluster beyond the cut could belong to its neighbour by a joiner, which older rules take for a boundary.
QString withoutFirst(const QString &piece)
{
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, piece);
    qsizetype end = finder.toNextBoundary();
    if (!mayBeTorn(piece.left(end))) {
        return piece;
    }
    while (end > 0 && end < piece.size() && piece.at(end - 1) == Joiner) {
        end = finder.toNextBoundary();
    }
    return end < 0 ? QString() : piece.mid(end);
}

QString withoutLast(const QString &piece)
{
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, piece);
    finder.toEnd();
    qsizetype start = finder.toPreviousBoundary();
    if (!mayBeTorn(piece.mid(start))) {
        return piece;
    }
    while (start > 0 && piece.at(start - 1) == Joiner) {
        start = finder.toPreviousBoundary();
    }
    return start < 0 ? QString() : piece.left(start);
}

} // namespace

QString whole(const QString &piece, Cut cut)
{
    if (cut == Cut::none || piece.isEmpty()) {
        return piece;
    }
    return cut == Cut::start ? withoutFirst(piece) : withoutLast(piece);
}

qint64 length(const QString &text, TextUnit unit)
{
    return unit == TextUnit::utf16 ? text.size() : text.toUcs4().size();
}

QString inRange(const QString &text, TextRange range, TextUnit unit)
{
    if (unit == TextUnit::codePoint) {
        const qsizetype start = advanced(text, 0, range.location);
        return text.mid(start, advanced(text, start, range.length) - start);
    }
    QString piece = text.mid(range.location, range.length);
    if (!piece.isEmpty() && piece.front().isLowSurrogate()) {
        piece.remove(0, 1);
    }
    if (!piece.isEmpty() && piece.back().isHighSurrogate()) {
        piece.chop(1);
    }
    return piece;
}

} // namespace vesk::TextPiece
