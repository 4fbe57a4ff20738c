#include "Desktop/ControlUser.h"
#include "Desktop/Peer.h"
#include "Dictation/HistoryStore.h"
#include "Foundation/Config.h"
#include "Server/AccountFile.h"
#include "Support/Await.h"
#include "Support/TemporaryHome.h"
#include "Support/VeskServer.h"

#include <QFile>

#include <gtest/gtest.h>

namespace vesk::test {

using namespace Qt::StringLiterals;

namespace {

constexpr int Return = 36;
constexpr int Home = 110;
constexpr int Down = 116;

/// Vesk's windows in a process of their own, used by somebody who sees only the accessibility bus.
class WindowsTest : public testing::Test {
protected:
    WindowsTest()
    {
        emptyTestHome();
        Config config;
        config.serverURL = server.baseURL().toString();
        config.write();
    }

    /// Starts the program on a page.
    void open(const QString &page)
    {
        peer = std::make_unique<Process>(
            QStringLiteral(VESK_TEST_WINDOWS_PEER),
            Process::Options{
                {}, QProcess::SeparateChannels, {}, {{u"QT_LINUX_ACCESSIBILITY_ALWAYS_ON"_s, u"1"_s}}});
        peer->readLine(); // "ready"
        user = std::make_unique<ControlUser>(peer->id());
        tell(page);
    }

    void tell(const QString &command)
    {
        peer->write(command.toUtf8() + '\n');
        EXPECT_EQ(peer->readLine(), "ok");
    }

    /// Opens the list of a choice and takes the entry with this number by the keyboard.
    void choose(const QString &name, const QString &entry, int number)
    {
        ASSERT_TRUE(user->press(u"combo box"_s, name)) << name.toStdString();
        ASSERT_TRUE(user->sees(entry));
        screen.tap(Home);
        for (int i = 0; i < number; ++i) {
            screen.tap(Down);
        }
        screen.tap(Return);
    }

    VeskServer server;
    Screen screen;
    std::unique_ptr<Process> peer;
    std::unique_ptr<ControlUser> user;
};

} // namespace

TEST_F(WindowsTest, everySettingStandsInTheFileAsSoonAsItIsChosen)
{
    open(u"page settings"_s);
    screen.activate(*screen.waitForWindow(u"Vesk"_s));
    const std::pair<QString, bool Config::*> flags[] = {
        {u"Clean up what was said"_s, &Config::cleanup},
        {u"Fit the text to the field's context"_s, &Config::useAppContext},
        {u"Keep a history"_s, &Config::keepHistory},
        {u"Record what the computer plays"_s, &Config::recordCallAudio},
        {u"Remind me of meetings"_s, &Config::meetingReminders},
    };
    for (const auto &[name, field] : flags) {
        const bool before = Config::load().*field;
        EXPECT_TRUE(user->press(u"check box"_s, name)) << name.toStdString();
        EXPECT_TRUE(eventually([&] { return Config::load().*field != before; })) << name.toStdString();
        EXPECT_EQ(user->isChecked(name), !before);
    }
    const struct {
        QString name;
        int number;
        QString text;
        QString Config::*field;
        QString value;
    } choices[] = {
        {u"Dictation key"_s, 1, u"Right Command (right Ctrl or Super)"_s, &Config::hotkey, u"rightCommand"_s},
        {u"Recognition"_s, 1, u"On this Mac: English only"_s, &Config::speech, u"mac"_s},
        {u"Language on this computer"_s, 1, u"English (United Kingdom)"_s, &Config::locale, u"en-GB"_s},
        {u"Command key"_s, 3, u"Off"_s, &Config::commandHotkey, u"off"_s},
        {u"Microphone"_s, 1, u"The system's default"_s, &Config::microphone, u"system"_s},
    };
    for (const auto &choice : choices) {
        choose(choice.name, choice.text, choice.number);
        EXPECT_TRUE(eventually([&] { return Config::load().*choice.field == choice.value; }))
            << choice.name.toStdString() << ": " << (Config::load().*choice.field).toStdString();
        EXPECT_TRUE(user->reads(u"combo box"_s, choice.name, choice.text)) << choice.name.toStdString();
    }
    EXPECT_TRUE(user->sees(u"In use: The AirPods of Maria"_s));
}

TEST_F(WindowsTest, aFileChangedByHandShowsAndADamagedOneIsReplacedOnlyWhenToldTo)
{
    open(u"page settings"_s);
    Config byHand = Config::load();
    byHand.hotkey = u"rightCommand"_s;
    byHand.write();
    EXPECT_TRUE(user->sees(u"Same key as dictation, so voice commands are off."_s));
    QFile file(Config::file());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("{ \"cleanup\": ");
    file.close();
    EXPECT_TRUE(user->sees(u"config.json cannot be read: "_s));
    EXPECT_TRUE(user->press(u"push button"_s, u"Replace It…"_s));
    EXPECT_TRUE(user->press(u"push button"_s, u"Cancel"_s));
    EXPECT_TRUE(user->seesNoLonger(u"nothing in it is lost"_s));
    EXPECT_THROW(Config::load(), std::exception);
    EXPECT_TRUE(user->press(u"push button"_s, u"Replace It…"_s));
    EXPECT_TRUE(user->press(u"push button"_s, u"Replace"_s));
    EXPECT_TRUE(user->seesNoLonger(u"config.json cannot be read: "_s));
    EXPECT_EQ(Config::load().hotkey, u"rightCommand");
}

TEST_F(WindowsTest, signsInWithAWayBackFromEveryState)
{
    open(u"account"_s);
    EXPECT_TRUE(user->type(u"Email address"_s, u"nobody"_s));
    EXPECT_TRUE(user->press(u"push button"_s, u"Send Link"_s));
    EXPECT_TRUE(user->sees(u"Type your email address."_s));
    EXPECT_TRUE(user->press(u"push button"_s, u"Cancel"_s));

    Script hanging;
    hanging.manner = Script::Manner::silent;
    server.scriptOnce("auth/start", hanging);
    EXPECT_TRUE(user->type(u"Email address"_s, u"maria@example.com"_s));
    EXPECT_TRUE(user->press(u"push button"_s, u"Send Link"_s));
    EXPECT_TRUE(user->sees(u"Asking for a letter to maria@example.com"_s));
    EXPECT_TRUE(user->press(u"push button"_s, u"Cancel"_s));

    server.pendingPolls = 1'000'000; // the link is never pressed
    EXPECT_TRUE(user->press(u"push button"_s, u"Send Link"_s));
    EXPECT_TRUE(user->sees(u"A letter is on its way to maria@example.com"_s));
    EXPECT_TRUE(user->press(u"push button"_s, u"Use Another Address"_s));
    EXPECT_TRUE(user->type(u"Email address"_s, u"new@example.com"_s));
    server.pendingPolls = 1;
    EXPECT_TRUE(user->press(u"push button"_s, u"Send Link"_s));
    EXPECT_TRUE(user->sees(u"Signed in as new@example.com"_s));
    EXPECT_TRUE(AccountFile::read());

    EXPECT_TRUE(user->press(u"push button"_s, u"Sign Out"_s));
    EXPECT_TRUE(user->sees(u"There is no password."_s));
    EXPECT_FALSE(AccountFile::read());
    EXPECT_TRUE(eventually([&] { return !server.requests("auth/sign-out").empty(); }));
}

TEST_F(WindowsTest, aWordIsAddedRemovedAndBroughtBack)
{
    open(u"page dictionary"_s);
    const auto vocabulary = [] { return Config::load().vocabulary; };
    EXPECT_TRUE(user->type(u"New word"_s, u"  Mrs   Okonkwo "_s));
    EXPECT_TRUE(user->press(u"push button"_s, u"Add"_s));
    EXPECT_TRUE(eventually([&] { return vocabulary() == QStringList{u"Mrs Okonkwo"_s}; }));
    EXPECT_TRUE(user->press(u"list item"_s, u"Mrs Okonkwo"_s));
    EXPECT_TRUE(user->press(u"push button"_s, u"Remove"_s));
    EXPECT_TRUE(eventually([&] { return vocabulary().isEmpty(); }));
    EXPECT_TRUE(user->press(u"push button"_s, u"Undo"_s));
    EXPECT_TRUE(eventually([&] { return vocabulary().size() == 1; }));
}

TEST_F(WindowsTest, theHistoryIsSearchedCopiedAndClearedAfterAQuestion)
{
    HistoryStore written;
    for (const QString &text : {u"The meeting is moved."_s, u"Dear Mrs Okonkwo"_s}) {
        Dictation entry;
        entry.date = QDateTime::currentDateTimeUtc();
        entry.kind = u"dictation"_s;
        entry.raw = u"um "_s + text.toLower();
        entry.text = text;
        written.append(entry);
    }
    open(u"page history"_s);
    EXPECT_TRUE(user->type(u"Search the history"_s, u"meeting"_s));
    EXPECT_TRUE(user->reads(u"text"_s, u"Text"_s, u"The meeting is moved."_s));
    EXPECT_TRUE(user->press(u"push button"_s, u"Copy as Heard"_s));
    EXPECT_TRUE(user->sees(u"Copied as it was heard."_s));
    peer->write("clipboard\n");
    EXPECT_EQ(QByteArray::fromPercentEncoding(peer->readLine()), "um the meeting is moved.");
    EXPECT_EQ(peer->readLine(), "ok");
    EXPECT_TRUE(user->press(u"push button"_s, u"Delete"_s));
    EXPECT_TRUE(eventually([] { return HistoryStore().entries().size() == 1; }));

    EXPECT_TRUE(user->press(u"push button"_s, u"Clear All…"_s));
    EXPECT_TRUE(user->press(u"push button"_s, u"Cancel"_s));
    EXPECT_EQ(HistoryStore().entries().size(), 1);
    EXPECT_TRUE(user->press(u"push button"_s, u"Clear All…"_s));
    EXPECT_TRUE(user->press(u"push button"_s, u"Clear All"_s));
    EXPECT_TRUE(eventually([] { return !QFile::exists(HistoryStore::file()); }));
}

TEST_F(WindowsTest, setUpTurnsGreenByItselfAndLeadsToTheAccount)
{
    open(u"missing"_s);
    tell(u"setup"_s);
    EXPECT_TRUE(user->sees(u"Microphone access was refused"_s));
    EXPECT_TRUE(user->sees(u"One thing is missing."_s));
    EXPECT_TRUE(user->press(u"push button"_s, u"Use Right Ctrl"_s));
    EXPECT_TRUE(eventually([] { return Config::load().hotkey == u"rightCommand"; }));
    tell(u"there"_s);
    EXPECT_TRUE(user->sees(u"Everything is ready."_s));
    EXPECT_TRUE(user->press(u"push button"_s, u"Sign In…"_s));
    EXPECT_TRUE(screen.waitForWindow(u"^Vesk$"_s));
    EXPECT_TRUE(user->sees(u"There is no password."_s));
}

TEST_F(WindowsTest, everyControlOfEveryPageHasAName)
{
    open(u"page home"_s);
    for (const QString &page : {u"page home"_s, u"page history"_s, u"page dictionary"_s, u"page settings"_s,
                                u"account"_s, u"setup"_s}) {
        tell(page);
        EXPECT_EQ(user->namelessControls(), QStringList()) << page.toStdString();
    }
}

} // namespace vesk::test
