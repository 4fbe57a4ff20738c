#include "MCP/NoteTools.h"

#include "Foundation/ParallelFor.h"
#include "Foundation/Text.h"
#include "MCP/NoteSearch.h"
#include "MCP/Refusal.h"
#include "MCP/TranscriptPages.h"
#include "Notes/NoteDecoder.h"
#include "Notes/NoteFolder.h"

#include <QFile>
#include <QJsonArray>

#include <fcntl.h>

namespace vesk {

using namespace Qt::StringLiterals;

namespace {

struct ListedNote {
    NoteHeading heading;
    QString summaryLine; ///< empty when there is none
};

class ListVisitor final : public HeadingVisitor {
public:
    void begin() override
    {
        HeadingVisitor::begin();
        m_summary.clear();
    }

    void text(Field field, QByteArrayView utf8, bool isLast) override
    {
        HeadingVisitor::text(field, utf8, isLast);
        if (field == Field::summary) {
            Text::appendUtf8(utf8, m_summary);
        }
    }

    ListedNote note() const
    {
        const QList<QStringView> lines = Text::nonEmptyLines(m_summary);
        return {heading(), lines.isEmpty() ? QString() : lines.front().toString()};
    }

private:
    QString m_summary;
};

/// A limit below one shows one.
std::size_t shown(qint64 limit) { return static_cast<std::size_t>(std::max<qint64>(limit, 1)); }

QString orNone(const QString &text)
{
    const QString trimmed = text.trimmed();
    return trimmed.isEmpty() ? u"(none)"_s : trimmed;
}

QStringList transcriptLines(const Note &note)
{
    QStringList lines;
    for (const Note::Segment &segment : note.segments) {
        lines.append(u'[' + Note::clock(segment.start) + u"] " + Note::speaker(segment.source) + u": "
                     + segment.text);
    }
    return lines;
}

QString exchanges(const Note &note)
{
    QStringList texts;
    for (const Note::Exchange &exchange : note.exchanges) {
        texts.append(u"Q: " + exchange.question + u"\nA: " + exchange.answer);
    }
    return texts.isEmpty() ? u"(none)"_s : texts.join(u"\n\n"_s);
}

QString firstPart(const Note &note, const QStringList &pages)
{
    return u"# " + note.displayTitle() + u"\nDate: " + note.created.iso8601() + u"\nLength: "
        + Note::length(note.duration) + u"\nID: " + Note::identifier(note.id) + u"\n\n## Summary by Claude\n"
        + orNone(note.summary) + u"\n\n## The owner's typed notes\n" + orNone(note.thoughts)
        + u"\n\n## Questions and answers\n" + exchanges(note)
        + u"\n\n## Transcript (Me is the owner, Them is the other people on the call)\n"
        + (pages.isEmpty() ? u"(nothing recorded)"_s : pages.front());
}

} // namespace

QJsonObject NoteTools::listNotes(qint64 limit) const
{
    const NoteFolder notes(m_folder);
    struct Worker {
        ListVisitor visitor;
        NewestNotes<ListedNote> newest;
        qsizetype total = 0;
    };
    const unsigned count = workersForAllCores();
    std::vector<Worker> workers(count, Worker{{}, NewestNotes<ListedNote>(shown(limit))});
    notes.forEach(count, [&](NoteReader &reader, std::size_t index, unsigned number) {
        Worker &worker = workers[number];
        if (notes.read(reader, index, worker.visitor)) {
            ++worker.total;
            worker.newest.add({worker.visitor.heading().created, index}, worker.visitor.note());
        }
    });
    NewestNotes<ListedNote> newest(shown(limit));
    qsizetype total = 0;
    for (Worker &worker : workers) {
        newest.take(worker.newest);
        total += worker.total;
    }
    QJsonArray list;
    for (const ListedNote &note : newest.take()) {
        QJsonObject object = note.heading.json();
        if (!note.summaryLine.isEmpty()) {
            object.insert("summary"_L1, note.summaryLine);
        }
        list.append(object);
    }
    return {{u"total"_s, total}, {u"notes"_s, list}};
}

QJsonObject NoteTools::searchNotes(const QString &query, qint64 limit) const
{
    const QString phrase = query.trimmed();
    if (phrase.isEmpty()) {
        throw Refusal(u"search_notes needs a query."_s);
    }
    const FoundNotes found = vesk::searchNotes(m_folder, SearchPhrase(phrase), shown(limit));
    QJsonArray list;
    for (const FoundNote &note : found.newest) {
        QJsonArray snippets;
        for (const FoundNote::Snippet &snippet : note.snippets) {
            snippets.append(QJsonObject{{u"in"_s, snippet.in}, {u"text"_s, snippet.text}});
        }
        QJsonObject object = note.heading.json();
        object.insert("matches"_L1, note.matches);
        object.insert("snippets"_L1, snippets);
        list.append(object);
    }
    return {{u"query"_s, phrase}, {u"total"_s, found.total}, {u"notes"_s, list}};
}

Note NoteTools::readNote(const QString &id) const
{
    if (const auto identity = Note::identity(id)) {
        const QString path = m_folder + u'/' + Note::identifier(*identity) + u".json";
        NoteReader reader;
        NoteDecoder decoder;
        if (reader.read(AT_FDCWD, QFile::encodeName(path).constData(), decoder)) {
            return decoder.takeNote();
        }
    }
    throw Refusal(u"No note with id \"" + id + u"\". Find the id with list_notes or search_notes.");
}

QString NoteTools::getNote(const QString &id, qint64 part) const
{
    const Note note = readNote(id);
    const QStringList pages = transcriptPages(transcriptLines(note));
    if (part < 1 || part > std::max<qint64>(pages.size(), 1)) {
        throw Refusal(u"This transcript has %1 parts; ask for part 1 to %1."_s.arg(pages.size()));
    }
    QString text = part == 1
        ? firstPart(note, pages)
        : QString(u"# " + note.displayTitle()
                  + u", transcript part %1 of %2\n\n"_s.arg(part).arg(pages.size()) + pages[part - 1]);
    if (part < pages.size()) {
        text += u"\n\n(Transcript part %1 of %2. Call get_note with part %3 to read on.)"_s.arg(part)
                    .arg(pages.size())
                    .arg(part + 1);
    }
    return text;
}

} // namespace vesk
