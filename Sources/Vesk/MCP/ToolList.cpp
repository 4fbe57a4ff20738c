#include "MCP/ToolList.h"

#include <QJsonObject>

namespace vesk {

using namespace Qt::StringLiterals;

namespace {

QJsonObject text(const QString &description)
{
    return {{u"type"_s, u"string"_s}, {u"description"_s, description}};
}

QJsonObject positiveInteger(const QString &description)
{
    return {{u"type"_s, u"integer"_s}, {u"minimum"_s, 1}, {u"description"_s, description}};
}

QJsonObject tool(const QString &name, const QString &title, const QString &description,
                 const QJsonObject &properties, const QStringList &required)
{
    return {
        {u"name"_s, name},
        {u"title"_s, title},
        {u"description"_s, description},
        {u"inputSchema"_s,
         QJsonObject{
             {u"type"_s, u"object"_s},
             {u"properties"_s, properties},
             {u"required"_s, QJsonArray::fromStringList(required)},
         }},
        {u"annotations"_s, QJsonObject{{u"readOnlyHint"_s, true}, {u"openWorldHint"_s, false}}},
    };
}

QJsonArray makeToolList()
{
    const QJsonObject limit = positiveInteger(u"How many notes to return."_s);
    return {
        tool(u"list_notes"_s, u"List notes"_s,
             u"The owner's notes, newest first: id, title, date, length and the first line of Claude's "
             u"summary. "
             "Returns 20 notes unless limit says otherwise."_s,
             {{u"limit"_s, limit}}, {}),
        tool(u"search_notes"_s, u"Search notes"_s,
             u"Find notes containing a word or phrase, ignoring case, in the title, the summary, the owner's "
             "typed notes or the transcript. The phrase must appear exactly, so search for one or two "
             "distinctive words. Returns note ids, newest first, with short snippets around the matches."_s,
             {{u"query"_s, text(u"The word or phrase to find."_s)}, {u"limit"_s, limit}}, {u"query"_s}),
        tool(u"get_note"_s, u"Read a note"_s,
             u"One note in full: title, date, length, Claude's summary, the owner's typed notes, earlier "
             "questions and answers, and the transcript with [m:ss] times and Me/Them labels. A long "
             "transcript "
             "comes in parts; the reply says when there is a next part."_s,
             {{u"id"_s, text(u"The note id from list_notes or search_notes."_s)},
              {u"part"_s, positiveInteger(u"Which part of a long transcript, 1 if left out."_s)}},
             {u"id"_s}),
    };
}

} // namespace

const QString &serverInstructions()
{
    static const QString text = u"Vesk keeps the owner's notes from meetings and calls on this Mac: a live "
                                u"transcript, the owner's own "
                                "typed notes, a summary by Claude and earlier questions and answers. In "
                                "transcripts \"Me\" is the owner "
                                "and \"Them\" is everyone else on the call. Find a note with search_notes or "
                                "list_notes, then read it "
                                "with get_note. Transcripts come from speech recognition and contain errors; "
                                "the owner's typed notes are "
                                "spelled as meant."_s;
    return text;
}

const QJsonArray &toolList()
{
    static const QJsonArray list = makeToolList();
    return list;
}

} // namespace vesk
