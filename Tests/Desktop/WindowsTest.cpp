#include "Desktop/WindowsFixture.h"
#include "Foundation/Config.h"
#include "Server/AccountFile.h"
#include "Support/Await.h"

#include <QFile>

namespace vesk::test {

using namespace Qt::StringLiterals;

namespace {

class WindowsTest : public WindowsFixture {};

} // namespace

TEST_F(WindowsTest, everySettingStandsInTheFileAsSoonAsItIsChosen)
{
    open(u"page settings"_s);
    toFront();
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

TEST_F(WindowsTest, setUpIsReachedFromHomeLeadsToAnotherKeyAndCloses)
{
    Config config = Config::load();
    config.hotkey = u"fn"_s;
    config.write();
    open(u"unseen"_s);
    tell(u"page home"_s);
    EXPECT_TRUE(user->press(u"push button"_s, u"Set Up…"_s));
    EXPECT_TRUE(screen.waitForWindow(u"^Set Up Vesk$"_s));
    EXPECT_TRUE(user->press(u"push button"_s, u"Choose Another Key…"_s));
    EXPECT_TRUE(user->finds(u"combo box"_s, u"Dictation key"_s));
    EXPECT_TRUE(user->press(u"push button"_s, u"Done"_s));
    EXPECT_TRUE(screen.waitForNoWindow(u"^Set Up Vesk$"_s));
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
