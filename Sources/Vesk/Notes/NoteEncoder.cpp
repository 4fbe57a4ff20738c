#include "Notes/NoteEncoder.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cmath>

namespace vesk {

using namespace Qt::StringLiterals;

namespace {

bool hasOnlyNumbersOfJson(const Note &note)
{
    return std::isfinite(note.created.seconds) && std::isfinite(note.duration)
        && std::all_of(note.segments.begin(), note.segments.end(),
                       [](const Note::Segment &segment) { return std::isfinite(segment.start); });
}

/// A recogniser or a server may cut a text between the halves of a surrogate pair. Qt writes a half as an
/// escape that no reader of notes accepts, and the whole note would be lost for it: it becomes U+FFFD.
QString wellFormed(QString text)
{
    if (text.isValidUtf16()) {
        return text;
    }
    for (qsizetype i = 0; i < text.size(); ++i) {
        const bool beginsPair =
            text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate();
        if (beginsPair) {
            ++i;
        } else if (text[i].isSurrogate()) {
            text[i] = QChar::ReplacementCharacter;
        }
    }
    return text;
}

QJsonArray encoded(const QList<Note::Segment> &segments)
{
    QJsonArray array;
    for (const Note::Segment &segment : segments) {
        array.append(QJsonObject{
            {u"source"_s, segment.source == Note::Source::me ? u"me"_s : u"them"_s},
            {u"start"_s, segment.start},
            {u"text"_s, wellFormed(segment.text)},
        });
    }
    return array;
}

QJsonArray encoded(const QList<Note::Exchange> &exchanges)
{
    QJsonArray array;
    for (const Note::Exchange &exchange : exchanges) {
        array.append(QJsonObject{
            {u"answer"_s, wellFormed(exchange.answer)},
            {u"id"_s, Note::identifier(exchange.id)},
            {u"question"_s, wellFormed(exchange.question)},
        });
    }
    return array;
}

} // namespace

std::optional<QByteArray> encodeNote(const Note &note)
{
    if (!hasOnlyNumbersOfJson(note)) {
        return std::nullopt;
    }
    const QJsonObject object = {
        {u"created"_s, note.created.seconds},       {u"duration"_s, note.duration},
        {u"exchanges"_s, encoded(note.exchanges)},  {u"id"_s, Note::identifier(note.id)},
        {u"segments"_s, encoded(note.segments)},    {u"summary"_s, wellFormed(note.summary)},
        {u"thoughts"_s, wellFormed(note.thoughts)}, {u"title"_s, wellFormed(note.title)},
    };
    // Outside strings JSON has no slash, and Qt escapes none: so each is one that wants its escape.
    return QJsonDocument(object).toJson(QJsonDocument::Indented).replace('/', "\\/");
}

} // namespace vesk
