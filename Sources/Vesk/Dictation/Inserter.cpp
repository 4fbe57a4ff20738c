#include "Dictation/Inserter.h"

#include "Dictation/InsertionError.h"
#include "Dictation/PasteboardLoan.h"
#include "Platform/KeyPoster.h"

#include <QTextBoundaryFinder>

#include <algorithm>
#include <cstdlib>

namespace vesk::Inserter {

using namespace Qt::StringLiterals;

namespace {

// Single characters only: a bracket that carries a combining mark is another character.
constexpr QStringView Opening = u"([{\"'\u201c\u2018\u00ab\u201e/";
constexpr QStringView Closing = u".,;:!?)]}\u2026'\u2019\"";
constexpr QStringView SentenceEnd = u".,;:!?";

QStringView firstCharacter(QStringView text)
{
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text.data(), text.size());
    return text.first(std::max<qsizetype>(finder.toNextBoundary(), 0));
}

QStringView lastCharacter(QStringView text)
{
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text.data(), text.size());
    finder.toEnd();
    return text.sliced(std::max<qsizetype>(finder.toPreviousBoundary(), 0));
}

/// What decides the properties of a whole character: a combining mark does not make a letter less of one.
char32_t baseOf(QStringView character)
{
    const bool isPair =
        character.size() > 1 && character[0].isHighSurrogate() && character[1].isLowSurrogate();
    return isPair ? QChar::surrogateToUcs4(character[0], character[1]) : character[0].unicode();
}

bool isWhiteSpace(QStringView character) { return QChar::isSpace(baseOf(character)); }

bool isLetterOrNumber(QStringView character)
{
    const char32_t base = baseOf(character);
    return QChar::isLetter(base) || QChar::isNumber(base);
}

bool isOneOf(QStringView set, QStringView character)
{
    return character.size() == 1 && set.contains(character);
}

bool needsLeadingSpace(QStringView before, QStringView text)
{
    const QStringView left = lastCharacter(before);
    const QStringView right = firstCharacter(text);
    return !isWhiteSpace(left) && !isOneOf(Opening, left) && !isWhiteSpace(right) && !isOneOf(Closing, right);
}

bool needsTrailingSpace(QStringView text, QStringView after)
{
    const QStringView left = lastCharacter(text);
    return isLetterOrNumber(firstCharacter(after)) && (isLetterOrNumber(left) || isOneOf(SentenceEnd, left));
}

/// How many code units of white space a finder meets on its way from where it stands.
template <typename Step>
qsizetype edge(QStringView text, QTextBoundaryFinder &finder, Step step)
{
    const qsizetype start = finder.position();
    qsizetype end = start;
    for (qsizetype next = step(); next >= 0; next = step()) {
        if (!isWhiteSpace(text.sliced(std::min(end, next), std::abs(next - end)))) {
            break;
        }
        end = next;
    }
    return std::abs(end - start);
}

QStringView leadingEdge(QStringView text)
{
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text.data(), text.size());
    return text.first(edge(text, finder, [&finder] { return finder.toNextBoundary(); }));
}

QStringView trailingEdge(QStringView text)
{
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text.data(), text.size());
    finder.toEnd();
    return text.last(edge(text, finder, [&finder] { return finder.toPreviousBoundary(); }));
}

} // namespace

QString spaced(const QString &text, const std::optional<QString> &before, const std::optional<QString> &after)
{
    if (text.isEmpty()) {
        return text;
    }
    const bool isLed = before && !before->isEmpty() && needsLeadingSpace(*before, text);
    const bool isTrailed = after && !after->isEmpty() && needsTrailingSpace(text, *after);
    return QString((isLed ? u" "_s : QString()) + text + (isTrailed ? u" "_s : QString()));
}

QString keepingEdges(const QString &oldText, const QString &replacement)
{
    return QString(leadingEdge(oldText) + replacement + trailingEdge(oldText));
}

Task<> paste(PasteboardLoan &loan, KeyPoster &keys, QString text)
{
    if (const Availability keyboard = keys.availability(); !keyboard.isAvailable()) {
        throw InsertionError::unavailable(keyboard.reason());
    }
    const PasteboardLoan::Turn turn = co_await loan.turn();
    if (!co_await keys.modifiersReleased(ModifierLimit)) {
        throw InsertionError::modifiersHeld();
    }
    const QList<PasteboardName> boards = co_await keys.pasteboardsOfFocus();
    co_await loan.layOut(boards, text);
    co_await pressCommandV(keys);
    loan.giveBackLater();
}

Task<> pressCommandV(KeyPoster &keys)
{
    // Both on their way before either is awaited: while a key is down it repeats, and the process may end.
    const Task<bool> down = keys.post(KeyPoster::PasteKey, KeyPoster::CommandFlag, true);
    const Task<bool> up = keys.post(KeyPoster::PasteKey, KeyPoster::CommandFlag, false);
    co_await down;
    co_await up;
}

} // namespace vesk::Inserter
