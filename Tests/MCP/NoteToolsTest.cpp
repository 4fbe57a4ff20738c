#include "MCP/NoteTools.h"

#include "MCP/Refusal.h"
#include "MCP/TranscriptPages.h"
#include "Notes/NoteFixtures.h"
#include "Support/TemporaryHome.h"

#include <QJsonArray>

#include <gmock/gmock.h>

namespace vesk {

using namespace Qt::StringLiterals;

namespace {

class NoteToolsTest : public HomeTest {
protected:
    static QJsonObject first(const QJsonObject &found)
    {
        return found.value("notes"_L1).toArray().at(0).toObject();
    }

    static QString refusal(const QString &id, qint64 part)
    {
        try {
            return NoteTools(Note::folder()).getNote(id, part);
        } catch (const Refusal &no) {
            return no.errorDescription();
        }
    }

    const NoteTools m_tools{Note::folder()};
};

} // namespace

TEST_F(NoteToolsTest, aListHasHeadingsAndTheFirstLineOfASummary)
{
    Note note = noteOf(791543107.25, u" "_s);
    note.duration = 3900;
    note.summary = u"\r\n\u2028First line\u0085Second"_s;
    putNote(note);
    putNote(noteOf(1, u"older"_s));
    const QJsonObject list = m_tools.listNotes(5);
    EXPECT_EQ(list.value("total"_L1).toInt(), 2);
    const QJsonObject expected = {{u"id"_s, Note::identifier(note.id)},
                                  {u"title"_s, u"New note"_s},
                                  {u"date"_s, u"2026-01-31T09:05:07Z"_s},
                                  {u"length"_s, u"1 h 5 min"_s},
                                  {u"summary"_s, u"First line"_s}};
    EXPECT_EQ(first(list), expected);
    EXPECT_FALSE(list.value("notes"_L1).toArray().at(1).toObject().contains("summary"_L1));
}

TEST_F(NoteToolsTest, eightMatchesAreCountedAndThreeShownInTheOrderOfFields)
{
    Note note = noteOf(1, u"Budget"_s, {u"budget budget"_s, u"no"_s, u"the BUDGET, the budget"_s});
    note.thoughts = u"budget\nbudget"_s;
    note.summary = u"budgetary"_s;
    note.exchanges.append({QUuid::createUuid(), u"budget?"_s, u"budget!"_s}); // not searched
    putNote(note);
    const QJsonObject found = m_tools.searchNotes(u"\t budget "_s, 10);
    EXPECT_EQ(found.value("query"_L1).toString(), u"budget"_s);
    EXPECT_EQ(first(found).value("matches"_L1).toInt(), 8);
    const QJsonArray snippets = {
        QJsonObject{{u"in"_s, u"title"_s}, {u"text"_s, u"Budget"_s}},
        QJsonObject{{u"in"_s, u"summary"_s}, {u"text"_s, u"budgetary"_s}},
        QJsonObject{{u"in"_s, u"owner's notes"_s}, {u"text"_s, u"budget budget"_s}},
    };
    EXPECT_EQ(first(found).value("snippets"_L1).toArray(), snippets);
}

TEST_F(NoteToolsTest, snippetsAreCutAroundWholeCharacters)
{
    const QString family = u"👨\u200D👩\u200D👧"_s;
    putNote(noteOf(1, {},
                   {family.repeated(71) + u"needle"_s + u"e\u0301"_s.repeated(70), u"a\n\nneedle\u2029b"_s}));
    const QJsonArray snippets = first(m_tools.searchNotes(u"needle"_s, 1)).value("snippets"_L1).toArray();
    ASSERT_EQ(snippets.size(), 2);
    EXPECT_EQ(snippets.at(0).toObject().value("text"_L1).toString(),
              u"[0:00] Me: ..." + family.repeated(70) + u"needle" + u"e\u0301"_s.repeated(70));
    EXPECT_EQ(snippets.at(1).toObject().value("text"_L1).toString(), u"[0:05] Them: a needle b"_s);
}

TEST_F(NoteToolsTest, aNoteReadsAsAPageOfText)
{
    Note note = noteOf(791543107, u"Weekly"_s, {u"hello"_s, u"hi"_s});
    note.exchanges = {{QUuid::createUuid(), u"Why?"_s, u"Because."_s},
                      {QUuid::createUuid(), u"When?"_s, u"Now."_s}};
    note.thoughts = u"\n ask \n"_s;
    putNote(note);
    const QString id = Note::identifier(note.id);
    EXPECT_EQ(m_tools.getNote(id.toLower(), 1),
              u"# Weekly\nDate: 2026-01-31T09:05:07Z\nLength: 0 s\nID: " + id
                  + u"\n\n## Summary by Claude\n(none)\n\n## The owner's typed notes\nask\n\n## Questions "
                    u"and answers\n"
                    "Q: Why?\nA: Because.\n\nQ: When?\nA: Now.\n\n"
                    "## Transcript (Me is the owner, Them is the other people on the call)\n"
                    "[0:00] Me: hello\n[0:05] Them: hi"_s);
    EXPECT_EQ(refusal(id, 2), u"This transcript has 1 parts; ask for part 1 to 1."_s);
    const Note empty = noteOf(1, {});
    putNote(empty);
    EXPECT_THAT(m_tools.getNote(Note::identifier(empty.id), 1).toStdString(),
                testing::EndsWith("(nothing recorded)"));
    EXPECT_EQ(refusal(Note::identifier(empty.id), 0), u"This transcript has 0 parts; ask for part 1 to 0."_s);
}

TEST_F(NoteToolsTest, pagesCountCharactersAndNeverSplitALine)
{
    const QString full(39'999, u'x');
    const QString wide = u"👍🏽"_s.repeated(20'000); // four units each, one character
    const std::pair<QStringList, QStringList> rows[] = {
        {{}, {}},
        {{full}, {full}},
        {{full, u""_s}, {QString(full + u'\n')}}, // 40,000 with its line feed, and an empty line
        {{full, u"y"_s}, {full, u"y"_s}},
        {{QString(50'000, u'x'), u"y"_s}, {QString(50'000, u'x'), u"y"_s}},
        {{wide, wide.left(19'999 * 4)}, {QString(wide + u'\n' + wide.left(19'999 * 4))}},
        {{wide, wide}, {wide, wide}},
    };
    for (const auto &[lines, pages] : rows) {
        EXPECT_EQ(transcriptPages(lines), pages);
    }
}

} // namespace vesk
