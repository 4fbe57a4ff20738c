#include "Desktop/PrivateDesktop.h"
#include "Desktop/WindowsFixture.h"
#include "Foundation/Config.h"
#include "Foundation/Files.h"
#include "Server/AccountFile.h"
#include "Support/Await.h"
#include "Support/TemporaryHome.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

namespace vesk::test {

using namespace Qt::StringLiterals;

namespace {

class SettingsPageTest : public WindowsFixture {
protected:
    /// Another program's or desktop's settings.
    static QString settingsFolder() { return PrivateDesktop::current().folder(u"config"_s); }

    void signIn()
    {
        EXPECT_TRUE(user->type(u"Email address"_s, u"maria@example.com"_s));
        EXPECT_TRUE(user->press(u"push button"_s, u"Send Link"_s));
        EXPECT_TRUE(user->sees(u"Signed in as maria@example.com"_s));
    }

    void enterServer(const QString &address)
    {
        EXPECT_TRUE(user->press(u"text"_s, u"Server address"_s)); // takes the focus
        EXPECT_TRUE(user->type(u"Server address"_s, address));
        screen.tap(Return);
    }
};

QJsonObject ourEntry(const QString &file)
{
    const QJsonObject settings = QJsonDocument::fromJson(Files::read(file)).object();
    return settings.value(u"mcpServers"_s).toObject().value(u"vesk"_s).toObject();
}

} // namespace

TEST_F(SettingsPageTest, onlyAWebAddressBecomesTheServerAndThenTheSignInEnds)
{
    open(u"account"_s);
    toFront();
    signIn();
    const QString before = Config::load().serverURL;

    enterServer(u"my own server"_s);
    EXPECT_TRUE(user->sees(QString(u"That is no web address; "_s + before + u" is still in use."_s)));
    EXPECT_EQ(Config::load().serverURL, before);
    EXPECT_TRUE(AccountFile::read()) << "a slip of the finger signs nobody out";

    enterServer(u" https://own.example/api/ "_s);
    EXPECT_TRUE(eventually([] { return Config::load().serverURL == u"https://own.example/api"; }));
    EXPECT_TRUE(user->seesNoLonger(u"That is no web address"_s));
    EXPECT_TRUE(user->sees(u"There is no password."_s));
    EXPECT_FALSE(AccountFile::read()) << "the token belongs to the other server";
    EXPECT_TRUE(eventually([&] { return !server.requests("auth/sign-out").empty(); }));

    EXPECT_TRUE(user->press(u"push button"_s, u"Use Default"_s));
    EXPECT_TRUE(eventually([] { return Config::load().serverURL == Config::defaultServerURL(); }));
    EXPECT_TRUE(user->reads(u"text"_s, u"Server address"_s, Config::defaultServerURL()));
}

TEST_F(SettingsPageTest, aLetterThatFailedOrGotLostIsAskedForAgain)
{
    open(u"account"_s);
    Script refusing;
    refusing.manner = Script::Manner::refuse;
    server.scriptOnce("auth/start", refusing);
    server.pendingPolls = 1'000'000; // the link is never pressed
    EXPECT_TRUE(user->type(u"Email address"_s, u"maria@example.com"_s));
    EXPECT_TRUE(user->press(u"push button"_s, u"Send Link"_s));
    EXPECT_TRUE(user->press(u"push button"_s, u"Try Again"_s));
    EXPECT_TRUE(user->sees(u"A letter is on its way to maria@example.com"_s));
    EXPECT_TRUE(user->press(u"push button"_s, u"Send Again"_s));
    EXPECT_TRUE(eventually([&] { return server.requests("auth/start").size() == 3; }));
    EXPECT_TRUE(user->sees(u"A letter is on its way to maria@example.com"_s));
    EXPECT_TRUE(user->press(u"push button"_s, u"Use Another Address"_s));
}

TEST_F(SettingsPageTest, startingAtLoginIsAnEntryThatComesAndGoesAndAFailureIsSaid)
{
    const QString folder = settingsFolder() + u"/autostart"_s;
    const QString entry = folder + u"/example.vesk.Vesk.desktop"_s;
    const QString box = u"Start Vesk when I log in"_s;
    ASSERT_TRUE(QDir(folder).removeRecursively());
    QFile inTheWay(folder);
    ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
    inTheWay.close();
    open(u"page settings"_s);

    EXPECT_TRUE(user->press(u"check box"_s, box));
    EXPECT_TRUE(user->sees(QString(folder + u" cannot be created: "_s)));
    EXPECT_FALSE(user->isChecked(box));

    ASSERT_TRUE(inTheWay.remove());
    EXPECT_TRUE(user->press(u"check box"_s, box));
    EXPECT_TRUE(eventually([&] { return QFile::exists(entry); }));
    EXPECT_TRUE(user->isChecked(box));
    EXPECT_TRUE(user->seesNoLonger(u" cannot be created: "_s));
    EXPECT_TRUE(user->press(u"check box"_s, box));
    EXPECT_TRUE(eventually([&] { return !QFile::exists(entry); }));
    EXPECT_FALSE(user->isChecked(box));
}

TEST_F(SettingsPageTest, aiAppsAreAddedToOrGivenWhatTheyNeed)
{
    const QString file = testHome() + u"/Library/Application Support/Claude/claude_desktop_config.json"_s;
    Files::makeFolder(QFileInfo(file).path());
    Files::replace(file, R"({"mcpServers": {"vesk": {"command": "/old/vesk", "args": ["--mcp"]}}})");
    open(u"page settings"_s);
    EXPECT_TRUE(user->sees(u"Claude Desktop uses another copy of Vesk: /old/vesk"_s));
    EXPECT_TRUE(user->press(u"push button"_s, u"Use This Copy"_s));
    EXPECT_TRUE(user->sees(u"Claude Desktop can read your notes."_s));
    const QString program = ourEntry(file).value(u"command"_s).toString();
    EXPECT_NE(program, u"/old/vesk");

    EXPECT_TRUE(user->press(u"push button"_s, u"Copy command"_s));
    EXPECT_TRUE(eventually([&] { return clipboard().startsWith(u"claude mcp add "); }));
    EXPECT_TRUE(user->press(u"push button"_s, u"Copy JSON"_s));
    EXPECT_TRUE(eventually([&] {
        const QJsonObject copied = QJsonDocument::fromJson(clipboard().toUtf8()).object();
        return copied.value(u"mcpServers"_s).toObject().value(u"vesk"_s).toObject() == ourEntry(file);
    })) << clipboard().toStdString();

    ASSERT_TRUE(QFile::remove(file));
    tell(u"page home"_s);
    tell(u"page settings"_s); // looks again
    EXPECT_TRUE(user->sees(u"Claude Desktop does not know of your notes yet."_s));
    EXPECT_TRUE(user->press(u"push button"_s, u"Add to Claude Desktop"_s));
    EXPECT_TRUE(user->sees(u"Claude Desktop can read your notes."_s));
    EXPECT_EQ(ourEntry(file).value(u"command"_s), program);
}

TEST_F(SettingsPageTest, theKeysAreTriedWhereTheirWordsGo)
{
    open(u"page settings"_s);
    EXPECT_TRUE(user->sees(u"Hold Right Option (right Alt) and speak."_s));
    tell(u"down rightOption"_s);
    EXPECT_TRUE(user->sees(u"Right Option (right Alt) is down: speak."_s));
    tell(u"up rightOption"_s);
    EXPECT_TRUE(user->sees(u"Right Option (right Alt) was held for "_s));
    tell(u"down rightCommand"_s);
    EXPECT_TRUE(user->sees(u"is down: say what should become of the selected text."_s));
    tell(u"up rightCommand"_s);
    EXPECT_TRUE(user->type(u"Try it here"_s, u"Words that were said"_s));
    EXPECT_TRUE(user->reads(u"text"_s, u"Try it here"_s, u"Words that were said"_s));
}

} // namespace vesk::test
