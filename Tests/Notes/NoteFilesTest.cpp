#include "Foundation/JsonScanner.h"
#include "Notes/FastNoteReading.h"
#include "Notes/NoteDecoder.h"
#include "Notes/NoteFixtures.h"
#include "Notes/StrictNoteReading.h"
#include "Support/TemporaryHome.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>
#include <limits>
#include <sys/stat.h>
#include <unistd.h>

namespace vesk {

using namespace Qt::StringLiterals;

namespace {

using NoteFilesTest = HomeTest;

/// Through a window so small that every token is cut somewhere.
std::optional<Note> strictly(const QByteArray &json, qsizetype window = 64)
{
    qsizetype at = 0;
    JsonScanner scanner(
        [&](char *into, qsizetype capacity) {
            const QByteArrayView piece =
                QByteArrayView(json).sliced(at).first(std::min(capacity, json.size() - at));
            std::copy(piece.begin(), piece.end(), into);
            at += piece.size();
            return piece.size();
        },
        window);
    NoteDecoder decoder;
    return readNoteStrictly(scanner, decoder) ? std::optional(decoder.takeNote()) : std::nullopt;
}

std::optional<Note> fast(const QByteArray &json)
{
    const QByteArray padded = json + QByteArray(FastNoteReading::padding(), '\0');
    FastNoteReading reading;
    NoteDecoder decoder;
    return reading.read(QByteArrayView(padded).first(json.size()), decoder)
        ? std::optional(decoder.takeNote())
        : std::nullopt;
}

const QByteArray Whole = R"({"created": 1, "duration": 2e0, "exchanges": [{"answer": "a", "id":
    "0e6f5b4c-1111-4222-8333-444455556666", "question": "q"}], "id": "0E6F5B4C-1111-4222-8333-444455556666",
    "segments": [{"source": "me", "start": 0.5, "text": "t"}], "summary": "s", "thoughts": "", "title": "x"})";

QByteArray changed(const QByteArray &from, const QByteArray &to)
{
    return QByteArray(Whole).replace(from, to);
}

} // namespace

TEST_F(NoteFilesTest, aNoteComesBackEqualToTheLastBitByBothReaders)
{
    StrangeTexts strange(1);
    for (int i = 0; i < 500; ++i) {
        Note note = strange.note();
        note.created.seconds = std::nextafter(0.1 * i, 1e9) + 7e8;
        note.title.prepend(QChar(QChar::ByteOrderMark)); // a text may begin with anything
        const QByteArray json = *encodeNote(note);
        ASSERT_EQ(fast(json), note) << json.constData();
        ASSERT_EQ(strictly(json), note) << json.constData();
    }
}

TEST_F(NoteFilesTest, halfASurrogatePairCostsItselfOnly)
{
    const QUuid id = QUuid::createUuid();
    const auto saying = [&](const QString &half) {
        const QString first = half + u"😀"_s + half + half;
        const QString second = QChar(QChar::ByteOrderMark) + u"/ 😀"_s + half;
        Note note = noteOf(1, first, {second, first});
        note.id = id;
        note.summary = note.thoughts = second;
        note.exchanges.append({id, first, second});
        return note;
    };
    for (const char16_t half : {u'\xd83d', u'\xde00'}) {
        const QByteArray json = *encodeNote(saying(QChar(half)));
        EXPECT_EQ(fast(json), saying(QChar(QChar::ReplacementCharacter))) << json.constData();
        EXPECT_EQ(strictly(json), saying(QChar(QChar::ReplacementCharacter))) << json.constData();
    }
}

TEST_F(NoteFilesTest, whatIsWrittenIsSortedIndentedAndHasItsSlashesEscaped)
{
    Note note = noteOf(12.5, u"and/or"_s);
    note.id = *Note::identity(u"0e6f5b4c-1111-4222-8333-444455556666");
    EXPECT_EQ(*encodeNote(note),
              "{\n    \"created\": 12.5,\n    \"duration\": 0,\n    \"exchanges\": [\n    ],\n"
              "    \"id\": \"0E6F5B4C-1111-4222-8333-444455556666\",\n    \"segments\": [\n    ],\n"
              "    \"summary\": \"\",\n    \"thoughts\": \"\",\n    \"title\": \"and\\/or\"\n}\n");
    note.duration = std::numeric_limits<double>::infinity();
    EXPECT_FALSE(encodeNote(note));
}

TEST_F(NoteFilesTest, bothReadersSayTheSameOfEveryFile)
{
    const QByteArray deep = QByteArray(600, '[') + QByteArray(600, ']');
    const std::pair<QByteArray, bool> rows[] = {
        {Whole, true},
        {changed("\"x\"", "\"\\ud83d\\udE00\\/\\u0000\""), true},
        {changed("\"title\"", "\"color\": {\"a\": [1, null, \"}\"]}, \"title\""), true}, // a strange member
        {changed("\"title\"", "\"t\\u0069tle\""), true}, // a spelling of its own
        {changed("\"summary\": \"s\",", ""), false},
        {changed("\"summary\"", "\"Summary\""), false},
        {changed("\"title\"", "\"summary\""), false}, // one twice, one not at all
        {changed("\"title\"", "\"title\": \"y\", \"title\""), false},
        {changed("\"created\": 1", "\"created\": \"1\""), false},
        {changed("\"created\": 1", "\"created\": null"), false},
        {changed("\"created\": 1", "\"created\": true"), false},
        {changed("\"created\": 1", "\"created\": 1e999"), false},
        {changed("\"created\": 1", "\"created\": 1e-999"), true}, // too small to tell from nought
        {changed("\"created\": 1", "\"created\": 01"), false},
        {changed("\"me\"", "\"us\""), false},
        {changed("\"me\"", "\"\\u006de\""), true},
        {changed("0E6F5B4C-1", "0E6F5B4C1-"), false},
        {changed("\"0E6F5B4C-1111-4222-8333-444455556666\"", "\"{0E6F5B4C-1111-4222-8333-444455556666}\""),
         false},
        {changed("\"t\"", "\"\\ud800\""), false},
        {changed("\"t\"", "\"\\udc00\""), false},
        {changed("\"t\"", "\"\\q\""), false},
        {changed("\"t\"", "\"t\": \"u\""), false}, // a value that looks like a key
        {changed("\"t\"", "\"\xff\""), false},
        {changed("\"t\"", "\"a\nb\""), false},
        {changed("\"t\"}]", "\"t\"},]"), false},
        {changed("\"title\"", "\"color\": [1 2}, \"title\""), false},
        {changed("\"title\"", ("\"deep\": " + deep + ", \"title\"")), false},
        {changed("[{\"source\"", "{\"source\""), false},
        {Whole + "x", false},
        {Whole + Whole, false},
        {Whole.chopped(1), false},
        {"\xEF\xBB\xBF" + Whole, false},
        {"[" + Whole + "]", false},
        {"", false},
        {"7", false},
        {deep, false},
    };
    for (const auto &[json, isNote] : rows) {
        EXPECT_EQ(strictly(json).has_value(), isNote) << json.constData();
        const std::optional<Note> quick = fast(json);
        EXPECT_TRUE(!quick || quick == strictly(json)) << json.constData();
    }
}

TEST_F(NoteFilesTest, whatIsNoNoteIsPassedOverAndLeftAlone)
{
    putNote(noteOf(1, u"old"_s));
    putNote(noteOf(2, u"new"_s));
    putFile(u"foreign.json"_s, "{}");
    putFile(u"half.json"_s, encodeNote(noteOf(3, u"half"_s))->first(100));
    putFile(u"upper.JSON"_s, *encodeNote(noteOf(3, u"upper"_s)));
    putFile(u".json"_s, *encodeNote(noteOf(3, u"without a name"_s)));
    const QDir folder(Note::folder());
    ASSERT_TRUE(QFile::link(u"loop.json"_s, folder.filePath(u"loop.json"_s)));
    ASSERT_TRUE(folder.mkdir(u"folder.json"_s));
    ASSERT_EQ(::mkfifo(QFile::encodeName(folder.filePath(u"pipe.json"_s)).constData(), 0600), 0);
    const QStringList before = folder.entryList(QDir::AllEntries | QDir::System | QDir::Hidden);
    QStringList titles;
    for (const Note &note : Note::readAll()) {
        titles.append(note.title);
    }
    EXPECT_EQ(titles, (QStringList{u"new"_s, u"old"_s}));
    EXPECT_EQ(folder.entryList(QDir::AllEntries | QDir::System | QDir::Hidden), before);
    EXPECT_EQ(Files::read(folder.filePath(u"foreign.json"_s)), "{}");
}

TEST_F(NoteFilesTest, aNoteBeyondWhatIsReadIntoMemoryIsReadAllTheSame)
{
    Note note = noteOf(1, u"long"_s, {u"short"_s, u"Щ😀\\"_s.repeated(300'000)});
    putNote(note);
    EXPECT_EQ(Note::readAll(), QList<Note>{note});
}

TEST_F(NoteFilesTest, withoutAFolderThereAreNoNotes) { EXPECT_TRUE(Note::readAll().isEmpty()); }

} // namespace vesk
