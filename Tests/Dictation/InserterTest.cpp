#include "Dictation/Inserter.h"

#include "Dictation/InsertionError.h"
#include "Dictation/PasteboardLoan.h"
#include "Support/Await.h"
#include "Support/FakeKeyPoster.h"
#include "Support/FakePasteboard.h"
#include "Support/ManualClock.h"
#include "Support/TemporaryHome.h"

#include <QDir>

#include <gmock/gmock.h>

namespace vesk {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

using Edge = std::optional<QString>;
constexpr PasteboardName General = PasteboardName::general;
constexpr PasteboardName Selection = PasteboardName::selection;

class PasteTest : public testing::Test {
protected:
    PasteTest()
    {
        board.copyByAnother(General, mine);
        keys.onPress = [this] { pasted.append(board.text(keys.pasteboards.last())); };
    }

    /// The press is the end of it; the person's own things are still away then.
    void paste(const QString &text) { awaited(Inserter::paste(loan, keys, text)); }

    void pass(std::chrono::milliseconds time)
    {
        clock.advance(time);
        QCoreApplication::processEvents(); // turns are handed on through the event loop
    }

    const QList<PasteboardItem> mine = FakePasteboard::item(u"image/png"_s, "\x89PNG\0\1");
    const QList<PasteboardItem> theirs = FakePasteboard::item(u"text/plain"_s, "copied meanwhile");
    ManualClock clock;
    FakePasteboard board;
    FakeKeyPoster keys{clock};
    PasteboardLoan loan{board, clock};
    QStringList pasted;
};

} // namespace

TEST(InserterTest, aSpaceStandsWhereWordsWouldRunTogetherAndNowhereElse)
{
    const std::tuple<QString, Edge, Edge, QString> rows[] = {
        {u""_s, u"a"_s, u"b"_s, u""_s},
        {u"word"_s, u""_s, u""_s, u"word"_s},
        {u"word"_s, u"one"_s, u"two"_s, u" word "_s},
        {u"word"_s, u"end."_s, u"."_s, u" word"_s},
        {u"word"_s, u"one "_s, u" two"_s, u"word"_s},
        {u"word"_s, u"\u00a0"_s, {}, u"word"_s},
        {u"word"_s, u"\u201e"_s, u"\u201c"_s, u"word"_s},
        {u"word"_s, u"and/"_s, u"\u00bb"_s, u"word"_s},
        {u"word"_s, u"\u00bb"_s, {}, u" word"_s},
        {u", then"_s, u"one"_s, {}, u", then"_s},
        {u"?"_s, u"one"_s, u"Two"_s, u"? "_s},
        {u"\u2019s"_s, u"one"_s, {}, u"\u2019s"_s},
        {u" word"_s, u"one"_s, {}, u" word"_s},
        {u"(word)"_s, u"one"_s, u"two"_s, u" (word)"_s},
        {u"\u4f60\u597d"_s, u"\u4e16"_s, u"\u754c"_s, u" \u4f60\u597d "_s},
        {u"e\u0301"_s, u"e\u0301"_s, u"e\u0301"_s, u" e\u0301 "_s},     // a mark belongs to its letter
        {u"word"_s, u"(\u0301"_s, {}, u" word"_s},                      // such a bracket is not the plain one
        {u".\u0301"_s, u"one"_s, u"two"_s, u" .\u0301"_s},              // nor is such a full stop
        {u"\U0001f600"_s, u"\U0001f600"_s, u"two"_s, u" \U0001f600"_s}, // neither letter nor blank
        {u"\U0001d400"_s, {}, u"\U0001d400"_s, u"\U0001d400 "_s},       // a letter beyond 16 bits
        {u"x\u00b2"_s, {}, u"\u0664"_s, u"x\u00b2 "_s},                 // numbers of other kinds
    };
    for (const auto &[text, before, after, expected] : rows) {
        EXPECT_EQ(Inserter::spaced(text, before, after), expected) << qPrintable(text);
    }
}

TEST(InserterTest, aReplacementKeepsTheWhiteSpaceAroundTheOldText)
{
    const std::pair<QString, QString> rows[] = {
        {u"  some words\n"_s, u"  new\n"_s},
        {u"word"_s, u"new"_s},
        {u""_s, u"new"_s},
        {u" \t\r\n"_s, u" \t\r\nnew \t\r\n"_s},
        {u"\u2003a b\u2029"_s, u"\u2003new\u2029"_s},
    };
    for (const auto &[old, expected] : rows) {
        EXPECT_EQ(Inserter::keepingEdges(old, u"new"_s), expected);
    }
}

TEST_F(PasteTest, theTextLiesThereForTheKeyAndTheOldThingsComeBackAfterTheTerm)
{
    paste(u"Grüße 世界 😀"_s);
    EXPECT_EQ(pasted, QStringList{u"Grüße 世界 😀"_s});
    EXPECT_THAT(keys.posts,
                testing::ElementsAre(FakeKeyPoster::Post{9, 0x100000, true},
                                     FakeKeyPoster::Post{9, 0x100000, false}));
    const PasteboardData mark = board.boards[General].items.constFirst().representations.at(1);
    EXPECT_EQ(mark, (PasteboardData{u"org.nspasteboard.TransientType"_s, {}, {}}));

    pass(799ms);
    EXPECT_NE(board.boards[General].items, mine);
    pass(1ms);
    EXPECT_EQ(board.boards[General].items, mine);
    EXPECT_EQ(board.boards[Selection].reads, 0);
}

TEST_F(PasteTest, aBoardThatSomebodyElseTookFirstIsTheirs)
{
    board.onWrite = [this] {
        board.copyByAnother(General, theirs);
        throw PasteboardError(u"refused"_s);
    };
    EXPECT_THROW(paste(u"x"_s), PasteboardError);
    board.onWrite = {};
    pass(1s);
    EXPECT_EQ(board.boards[General].items, theirs);
}

TEST_F(PasteTest, aSecondPasteWithinTheTermGivesBackWhatWasBeforeTheFirst)
{
    paste(u"one"_s);
    pass(700ms);
    paste(u"two"_s);
    EXPECT_EQ(board.boards[General].reads, 1);
    pass(799ms);
    EXPECT_EQ(board.text(), u"two"_s);
    pass(1ms);
    EXPECT_EQ(board.boards[General].items, mine);

    // Between these two the person copied something: that is theirs now.
    paste(u"three"_s);
    board.copyByAnother(General, theirs);
    paste(u"four"_s);
    pass(2s);
    EXPECT_EQ(board.boards[General].items, theirs);
    EXPECT_EQ(pasted.size(), 4);
}

TEST_F(PasteTest, pastesBegunTogetherTakeTurns)
{
    keys.held = 500ms;
    const auto first = Inserter::paste(loan, keys, u"one"_s);
    auto second = Inserter::paste(loan, keys, u"two"_s);
    EXPECT_TRUE(pasted.isEmpty());
    clock.advance(500ms);
    keys.held = 0ms;
    awaited(std::move(second));
    EXPECT_EQ(pasted, (QStringList{u"one"_s, u"two"_s}));
    pass(800ms);
    EXPECT_EQ(board.boards[General].items, mine);
}

TEST_F(PasteTest, whatAnOwnerDidNotTellIsNotMadeUp)
{
    QDir().mkpath(testHome() + u"/Library/Logs"_s);
    const std::tuple<QList<PasteboardItem>, bool, QByteArray> rows[] = {
        {QList<PasteboardItem>(), false, {}},
        {QList<PasteboardItem>(), true, "did not answer: it is cleared"},
        {mine, true, "a part of it is lost"}};
    for (const auto &[told, isHanging, line] : rows) {
        board.boards[General].items = told;
        board.boards[General].isOwnerHanging = isHanging;
        paste(u"SECRETWORD"_s);
        EXPECT_EQ(board.text(), u"SECRETWORD"_s);
        pass(800ms);
        EXPECT_EQ(board.boards[General].items, told);
        EXPECT_TRUE(logText().contains(line)) << line.constData();
    }
    EXPECT_FALSE(logText().contains("SECRETWORD"));
}

TEST_F(PasteTest, theEndOfTheProgramGivesBackAtOnceButNeverOverSomeoneElse)
{
    for (const bool isCopiedOver : {false, true}) {
        PasteboardLoan last(board, clock);
        board.copyByAnother(General, mine);
        awaited(Inserter::paste(last, keys, u"text"_s));
        if (isCopiedOver) {
            board.copyByAnother(General, theirs);
        }
        last.finish(1s);
        EXPECT_EQ(board.boards[General].items, isCopiedOver ? theirs : mine);
        EXPECT_TRUE(std::exchange(board.isPersisted, false));
        const qint64 count = board.changeCount(General);
        pass(2s);
        EXPECT_EQ(board.changeCount(General), count) << "given back twice";
        EXPECT_THROW(awaited(Inserter::paste(last, keys, u"too late"_s)), InsertionError);
        EXPECT_EQ(board.changeCount(General), count);
    }
}

} // namespace vesk
