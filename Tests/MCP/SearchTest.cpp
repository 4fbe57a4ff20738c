#include "Foundation/CaseFolding.h"
#include "MCP/NoteSearch.h"
#include "Notes/NoteFixtures.h"
#include "Support/TemporaryHome.h"

#include <QHash>
#include <QProcess>
#include <QTextBoundaryFinder>

#include <gtest/gtest.h>

namespace vesk {

using namespace Qt::StringLiterals;

namespace {

QStringList characters(const QString &text)
{
    QStringList found;
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    for (qsizetype from = 0, to = finder.toNextBoundary(); to >= 0; from = to, to = finder.toNextBoundary()) {
        found.append(text.mid(from, to - from));
    }
    return found;
}

/// Of one character; remembered, because there are few.
const QString &foldedCharacter(const QString &character)
{
    static QHash<QString, QString> known;
    QString &folded = known[character];
    if (folded.isEmpty()) {
        folded = CaseFolding::folded(character);
    }
    return folded;
}

/// Matches by the definition and nothing else: stretches of whole characters are folded and compared.
qsizetype matchesByDefinition(const QStringList &text, const QString &folded)
{
    qsizetype matches = 0;
    for (qsizetype first = 0; first < text.size();) {
        qsizetype end = first;
        QString stretch;
        bool isMatch = false;
        while (end < text.size() && !isMatch && folded.startsWith(foldedCharacter(text[first]))
               && end - first <= folded.size()) {
            stretch += text[end++];
            isMatch = CaseFolding::folded(stretch) == folded;
        }
        matches += isMatch ? 1 : 0;
        first = isMatch ? end : first + 1;
    }
    return matches;
}

/// Characters beyond ASCII spelled as their numbers, as some programs write JSON.
QByteArray inNumbers(const QByteArray &json)
{
    QByteArray spelled;
    for (const QChar c : QString::fromUtf8(json)) {
        const char16_t unit = c.unicode();
        spelled += unit >= 0x80 ? "\\u" + QByteArray::number(unit, 16).rightJustified(4, '0')
                                : QByteArray(1, c.toLatin1());
    }
    return spelled;
}

class SearchTest : public HomeTest {
protected:
    static qsizetype matches(const QString &text, const QString &phrase)
    {
        const SearchPhrase searched(phrase);
        TextSearch search(searched);
        search.begin();
        search.add(text.toUtf8(), true, TextSearch::Thoroughness::all);
        return search.matches();
    }
};

} // namespace

TEST_F(SearchTest, caseAndCompositionDoNotMatterAndCharactersAreWhole)
{
    const std::tuple<QString, QString, qsizetype> rows[] = {
        {u"Straße STRASSE strasse ſtraße"_s, u"strasse"_s, 4},
        {u"STRASSE"_s, u"straße"_s, 1},
        {u"ß"_s, u"s"_s, 0}, // half a letter
        {u"ßs"_s, u"ss"_s, 1},
        {u"ﬁne"_s, u"FINE"_s, 1},
        {u"ﬁne"_s, u"ine"_s, 0},
        {u"İstanbul"_s, u"i\u0307STANBUL"_s, 1},
        {u"ISTANBUL istanbul ıstanbul"_s, u"istanbul"_s, 2},
        {u"Café CAFE\u0301"_s, u"cafe\u0301"_s, 2},
        {u"Café"_s, u"cafe"_s, 0},
        {u"\u1EC7 \u00EA\u0323 e\u0323\u0302"_s, u"E\u0302\u0323"_s, 3},
        {u"ЙОГА йога и\u0306ога"_s, u"Йога"_s, 3},
        {u"йога"_s, u"и"_s, 0},
        {u"ОДИССЕЙ ᲂдиссей"_s, u"одиссей"_s, 2},
        {u"ΟΔΥΣΣΕΥΣ"_s, u"οδυσσευς"_s, 1},
        {u"ᾼ ΑΙ"_s, u"αι"_s, 2},
        {u"10 K\u00B7\u212A"_s, u"k"_s, 2},
        {u"👨\u200D👩\u200D👧 👨"_s, u"👨"_s, 1},
        {u"한국 \u1112\u1161\u11AB국"_s, u"한국"_s, 2},
        {u"aaaa"_s, u"aa"_s, 2},
        {u"and/or \"x\" \\"_s, u"AND/OR \"X\" \\"_s, 1},
        {u"one\ntwo"_s, u"one\ntwo"_s, 1},
    };
    for (const auto &[text, phrase, count] : rows) {
        EXPECT_EQ(matches(text, phrase), count) << text.toStdString() << " / " << phrase.toStdString();
    }
}

TEST_F(SearchTest, everyCharacterFoldsAsAnotherProgramsTablesSay)
{
    QProcess python;
    python.start(u"python3"_s,
                 {u"-c"_s,
                  u"import unicodedata as u\n"
                  "d = lambda s: u.normalize('NFD', s)\n"
                  "for i in [*range(0xD800), *range(0xE000, 0x30000)]:\n"
                  "    if u.category(chr(i)) != 'Cn':\n"
                  "        print(i, *(ord(c) for c in d(d(chr(i)).casefold())))\n"_s});
    ASSERT_TRUE(python.waitForFinished());
    ASSERT_EQ(python.exitCode(), 0);
    int compared = 0;
    for (const QByteArray &line : python.readAllStandardOutput().split('\n')) {
        QList<char32_t> points;
        for (const QByteArray &number : line.split(' ')) {
            points.append(static_cast<char32_t>(number.toUInt()));
        }
        const QString character = QString::fromUcs4(points.data(), 1);
        const QString expected = QString::fromUcs4(points.data() + 1, points.size() - 1);
        if (points.size() > 1) {
            EXPECT_EQ(CaseFolding::folded(character), expected) << line.constData();
            QString appended;
            std::vector<qsizetype> starts;
            if (character.size() == 1) {
                CaseFolding::appendUnits(character, appended, starts);
                EXPECT_EQ(appended, expected) << line.constData();
            }
            ++compared;
        }
    }
    EXPECT_GT(compared, 100'000);
}

TEST_F(SearchTest, agreesWithTheDefinitionOnThousandsOfStrangeNotes)
{
    constexpr int Notes = 3000;
    constexpr int Phrases = 60;
    StrangeTexts strange(7);
    std::vector<Note> notes;
    std::vector<std::vector<QStringList>> texts; // of each note, by characters
    for (int i = 0; i < Notes; ++i) {
        notes.push_back(strange.note());
        const Note &made = notes.back();
        texts.push_back({characters(made.title), characters(made.summary), characters(made.thoughts)});
        for (const Note::Segment &segment : made.segments) {
            texts.back().push_back(characters(segment.text));
        }
        notes.back().created = {7e8 + i};
        const QByteArray json = *encodeNote(notes.back());
        putFile(QString::number(i) + u".json", i % 4 == 0 ? inNumbers(json) : json);
    }
    qsizetype found = 0;
    for (int i = 0; i < Phrases; ++i) {
        // Half of the phrases are cut from a note, so that they are found.
        const Note &origin = notes[static_cast<std::size_t>(strange.below(Notes))];
        const QStringList cut = characters(origin.thoughts).mid(strange.below(3), 1 + strange.below(3));
        const QString phrase = (i % 2 == 0 ? cut.join(QString()) : strange.text(3)).trimmed();
        if (phrase.isEmpty()) {
            continue;
        }
        const QString folded = CaseFolding::folded(phrase);
        const FoundNotes answer = searchNotes(Note::folder(), SearchPhrase(phrase), Notes);
        auto next = answer.newest.begin();
        qsizetype total = 0;
        for (std::size_t note = Notes; note-- > 0;) { // newest first
            qsizetype expected = 0;
            for (const QStringList &text : texts[note]) {
                expected += matchesByDefinition(text, folded);
            }
            if (expected > 0) {
                ++total;
                ASSERT_TRUE(next != answer.newest.end()) << phrase.toStdString();
                ASSERT_EQ(next->heading.id, notes[note].id) << phrase.toStdString();
                ASSERT_EQ(next->matches, expected) << phrase.toStdString();
                ++next;
            }
        }
        ASSERT_EQ(answer.total, total) << phrase.toStdString();
        found += total;
    }
    EXPECT_GT(found, Notes); // or nothing has been compared
}

TEST_F(SearchTest, aTextThatComesInPiecesIsSearchedAsOne)
{
    StrangeTexts strange(3);
    QString text;
    while (text.size() < 300'000) {
        text += strange.text(40) + (strange.below(200) == 0 ? u"Nadel im Heu"_s : u"n"_s);
    }
    const SearchPhrase phrase(u"NADEL IM HEU"_s);
    TextSearch whole(phrase);
    TextSearch pieces(phrase);
    whole.begin();
    pieces.begin();
    whole.add(text.toUtf8(), true, TextSearch::Thoroughness::all);
    const QList<uint> points = text.toUcs4();
    for (qsizetype at = 0; at < points.size();) {
        const qsizetype length = std::min<qsizetype>(1 + strange.below(5000), points.size() - at);
        const QString piece =
            QString::fromUcs4(reinterpret_cast<const char32_t *>(points.data() + at), length);
        at += length;
        pieces.add(piece.toUtf8(), at == points.size(), TextSearch::Thoroughness::all);
    }
    EXPECT_GT(whole.matches(), 20);
    EXPECT_EQ(pieces.matches(), whole.matches());
    EXPECT_EQ(pieces.snippets(), whole.snippets());
}

TEST_F(SearchTest, aNoteTooLongForMemoryIsFoundWithItsSnippets)
{
    Note note =
        noteOf(1, u"long"_s, QStringList(20'000, u"nothing of interest is said in here, for very long"_s));
    note.segments[15'000].text = u"the hidden Treasure is here"_s;
    note.thoughts = u"blah "_s.repeated(300'000) + u"treasure"_s;
    putNote(note);
    const FoundNotes found = searchNotes(Note::folder(), SearchPhrase(u"treasure"_s), 10);
    ASSERT_EQ(found.newest.size(), 1U);
    EXPECT_EQ(found.newest[0].matches, 2);
    EXPECT_EQ(found.newest[0].snippets[0].text, u"..." + u"blah "_s.repeated(14) + u"treasure");
    EXPECT_EQ(found.newest[0].snippets[1].text, u"[20:50:00] Me: the hidden Treasure is here"_s);
}

TEST_F(SearchTest, onlyTheNewestAreShownAndAllAreCounted)
{
    for (int i = 0; i < 50; ++i) {
        putNote(noteOf(i * 7 % 50, QString::number(i * 7 % 50), {u"word word"_s}));
    }
    const FoundNotes found = searchNotes(Note::folder(), SearchPhrase(u"word"_s), 3);
    EXPECT_EQ(found.total, 50);
    ASSERT_EQ(found.newest.size(), 3U);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(found.newest[i].heading.title, QString::number(49 - static_cast<int>(i)));
        EXPECT_EQ(found.newest[i].matches, 2);
    }
}

} // namespace vesk
