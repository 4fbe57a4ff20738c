#include "Desktop/WindowsFixture.h"
#include "Dictation/HistoryStore.h"
#include "Foundation/Config.h"
#include "Foundation/Files.h"
#include "Support/Await.h"
#include "Support/TemporaryHome.h"

#include <QFile>

namespace vesk::test {

using namespace Qt::StringLiterals;

namespace {

QString vocabulary() { return Config::load().vocabulary.join(u'|'); }

void setVocabulary(const QStringList &words)
{
    Config config = Config::load();
    config.vocabulary = words;
    config.write();
}

class DictionaryPageTest : public WindowsFixture {
protected:
    DictionaryPageTest() { setVocabulary({u"Łódź"_s, u"Vesk"_s}); }

    /// Chooses a file in the dialog that the button opens.
    void chooseFile(const QString &button, const QString &path, const QString &accept)
    {
        EXPECT_TRUE(user->press(u"push button"_s, button));
        EXPECT_TRUE(user->type(u"File name"_s, path));
        EXPECT_TRUE(user->press(u"push button"_s, accept));
    }
};

class HistoryPageTest : public WindowsFixture {};
class HomePageTest : public WindowsFixture {};

} // namespace

TEST_F(DictionaryPageTest, aWordIsAddedRemovedAndBroughtBack)
{
    open(u"page dictionary"_s);
    EXPECT_TRUE(user->type(u"New word"_s, u"  Mrs   Okonkwo "_s));
    EXPECT_TRUE(user->press(u"push button"_s, u"Add"_s));
    EXPECT_TRUE(eventually([] { return vocabulary() == u"Łódź|Vesk|Mrs Okonkwo"; }));
    EXPECT_TRUE(user->press(u"list item"_s, u"Mrs Okonkwo"_s));
    EXPECT_TRUE(user->press(u"push button"_s, u"Remove"_s));
    EXPECT_TRUE(eventually([] { return vocabulary() == u"Łódź|Vesk"; }));
    EXPECT_TRUE(user->press(u"push button"_s, u"Undo"_s));
    EXPECT_TRUE(eventually([] { return vocabulary() == u"Łódź|Vesk|Mrs Okonkwo"; }));
}

TEST_F(DictionaryPageTest, aWordIsFoundRenamedAndARefusedNameIsExplained)
{
    constexpr int Q = 24;
    constexpr int T = 28;
    setVocabulary({u"Łódź"_s, u"qt"_s});
    open(u"page dictionary"_s);
    toFront();
    EXPECT_TRUE(user->type(u"Search the dictionary"_s, u"łód"_s));
    EXPECT_TRUE(eventually([&] { return !user->isThere(u"list item"_s, u"qt"_s); }));
    EXPECT_TRUE(user->press(u"list item"_s, u"Łódź"_s));
    // The field within the list is outside the tree that assistive programs walk; they follow the focus to
    // it.
    EXPECT_TRUE(user->press(u"push button"_s, u"Rename"_s));
    screen.tap(Q);
    screen.tap(T);
    screen.tap(Return);
    EXPECT_TRUE(user->sees(u"“qt” is already in the dictionary."_s));
    EXPECT_EQ(vocabulary(), u"Łódź|qt");
    EXPECT_TRUE(user->press(u"push button"_s, u"Rename"_s));
    screen.tap(T);
    screen.tap(Return);
    EXPECT_TRUE(eventually([] { return vocabulary() == u"t|qt"; })) << vocabulary().toStdString();
}

TEST_F(DictionaryPageTest, wordsLeaveAndEnterAsText)
{
    const QString exported = testHome() + u"/words.txt"_s;
    const QString others = testHome() + u"/others.txt"_s;
    const QString damaged = testHome() + u"/damaged.txt"_s;
    Files::replace(others, "Vesk\r\nPlovdiv\n\n  Mrs  Okonkwo ");
    Files::replace(damaged, "half a w\xc3");
    open(u"page dictionary"_s);

    chooseFile(u"Export…"_s, exported, u"Save"_s);
    EXPECT_TRUE(user->sees(u"Exported to words.txt."_s));
    EXPECT_EQ(Files::read(exported), u"Łódź\nVesk\n"_s.toUtf8());

    chooseFile(u"Import…"_s, others, u"Open"_s);
    EXPECT_TRUE(user->sees(u"2 words added. 1 already there."_s));
    EXPECT_EQ(vocabulary(), u"Łódź|Vesk|Plovdiv|Mrs Okonkwo");

    chooseFile(u"Import…"_s, damaged, u"Open"_s);
    EXPECT_TRUE(user->sees(u"damaged.txt is not a text in UTF-8, so nothing was added."_s));
    EXPECT_EQ(vocabulary(), u"Łódź|Vesk|Plovdiv|Mrs Okonkwo");
}

TEST_F(HistoryPageTest, theHistoryIsSearchedCopiedAndClearedAfterAQuestion)
{
    writeHistory({u"The meeting is moved."_s, u"Dear Mrs Okonkwo"_s});
    open(u"page history"_s);
    EXPECT_TRUE(user->type(u"Search the history"_s, u"meeting"_s));
    EXPECT_TRUE(user->reads(u"text"_s, u"Text"_s, u"The meeting is moved."_s));
    EXPECT_TRUE(user->press(u"push button"_s, u"Copy as Heard"_s));
    EXPECT_TRUE(user->sees(u"Copied as it was heard."_s));
    EXPECT_EQ(clipboard(), u"um the meeting is moved.");
    EXPECT_TRUE(user->press(u"push button"_s, u"Copy"_s));
    EXPECT_TRUE(user->sees(u"Copied."_s));
    EXPECT_EQ(clipboard(), u"The meeting is moved.");
    EXPECT_TRUE(user->press(u"push button"_s, u"Delete"_s));
    EXPECT_TRUE(eventually([] { return HistoryStore().entries().size() == 1; }));

    EXPECT_TRUE(user->press(u"push button"_s, u"Clear All…"_s));
    EXPECT_TRUE(user->press(u"push button"_s, u"Cancel"_s));
    EXPECT_EQ(HistoryStore().entries().size(), 1);
    EXPECT_TRUE(user->press(u"push button"_s, u"Clear All…"_s));
    EXPECT_TRUE(user->press(u"push button"_s, u"Clear All"_s));
    EXPECT_TRUE(eventually([] { return !QFile::exists(HistoryStore::file()); }));
}

TEST_F(HistoryPageTest, aWordThatWasHeardWrongGoesFromTheTextIntoTheDictionary)
{
    writeHistory({u"Dear Mrs Okonkwo, thank you."_s, u"The meeting is moved."_s});
    open(u"page history"_s);
    EXPECT_TRUE(user->press(u"list item"_s, u"Dear Mrs Okonkwo, thank you."_s));
    EXPECT_TRUE(user->reads(u"text"_s, u"Text"_s, u"Dear Mrs Okonkwo, thank you."_s));
    EXPECT_FALSE(user->isEnabled(u"push button"_s, u"Add to Dictionary"_s)) << "no word is selected";
    EXPECT_TRUE(user->select(u"Text"_s, u"Okonkwo"_s));
    EXPECT_TRUE(eventually([&] { return user->isEnabled(u"push button"_s, u"Add to Dictionary"_s); }));
    EXPECT_TRUE(user->press(u"push button"_s, u"Add to Dictionary"_s));
    EXPECT_TRUE(user->sees(u"One word added."_s));
    EXPECT_EQ(vocabulary(), u"Okonkwo");
}

TEST_F(HomePageTest, theLastDictationIsCopiedAndEveryPageIsReached)
{
    writeHistory({u"The meeting is moved."_s, u"Dear Mrs Okonkwo"_s});
    open(u"page home"_s);
    EXPECT_TRUE(user->press(u"push button"_s, u"Copy"_s));
    EXPECT_TRUE(user->sees(u"Copied."_s));
    EXPECT_EQ(clipboard(), u"Dear Mrs Okonkwo");
    EXPECT_TRUE(user->press(u"push button"_s, u"Show All"_s));
    EXPECT_TRUE(user->finds(u"push button"_s, u"Clear All…"_s));
    const std::pair<QString, std::pair<QString, QString>> pages[] = {
        {u"Dictionary"_s, {u"text"_s, u"New word"_s}},
        {u"Settings"_s, {u"combo box"_s, u"Dictation key"_s}},
        {u"History"_s, {u"text"_s, u"Search the history"_s}},
        {u"Home"_s, {u"push button"_s, u"Show All"_s}},
    };
    for (const auto &[page, control] : pages) {
        EXPECT_TRUE(user->press(u"list item"_s, page)) << page.toStdString();
        EXPECT_TRUE(user->finds(control.first, control.second)) << page.toStdString();
    }
}

} // namespace vesk::test
