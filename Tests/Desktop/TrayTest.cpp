// The status item as panels get it: over the session bus, and embedded over X11.

#include "Desktop/Screen.h"
#include "Desktop/ShellProgram.h"
#include "Desktop/TrayPeer.h"

#include <gtest/gtest.h>

namespace vesk::test {

namespace {

std::unique_ptr<Process> startTrayer()
{
    const QStringList arguments{QStringLiteral("--edge"), QStringLiteral("top"),
                                QStringLiteral("--widthtype"), QStringLiteral("request")};
    return std::make_unique<Process>(QStringLiteral("trayer"),
                                     Process::Options{arguments, QProcess::SeparateChannels, {}, {}});
}

const QString Plain = QStringLiteral("Open Vesk|-|Settings…|Quit Vesk");

} // namespace

TEST(Tray, theMenuIsWhatIsTrueWhenItOpens)
{
    TrayPeer tray;
    ShellProgram shell;
    ASSERT_EQ(tray.ask(QStringLiteral("item")), u"item");
    EXPECT_EQ(tray.ask(QStringLiteral("title")), u"Vesk");
    const struct {
        const char *change;
        const char *menu;
    } rows[] = {
        {"clear", "Open Vesk|-|Settings…|Quit Vesk"},
        {"last", "Open Vesk|Copy Last Dictation|-|Settings…|Quit Vesk"},
        {"access", "Allow Access…|-|Open Vesk|Copy Last Dictation|-|Settings…|Quit Vesk"},
        {"retry", "Allow Access…|-|Open Vesk|Copy Last Dictation|Retry Last Dictation|-|Settings…|Quit Vesk"},
        {"clear", "Open Vesk|-|Settings…|Quit Vesk"},
        {"error No sense in my_file & more",
         "[No sense in my_file & more]|-|Open Vesk|-|Settings…|Quit Vesk"},
    };
    for (const auto &row : rows) {
        shell.say(QString(QStringLiteral("state ") + QString::fromUtf8(row.change)));
        EXPECT_EQ(tray.ask(QStringLiteral("menu")), QString::fromUtf8(row.menu)) << row.change;
    }
}

TEST(Tray, whatIsClickedIsDone)
{
    TrayPeer tray;
    ShellProgram shell;
    ASSERT_EQ(tray.ask(QStringLiteral("item")), u"item");
    for (const char *state : {"access", "last", "retry"}) {
        shell.say(QString(QStringLiteral("state ") + QString::fromUtf8(state)));
    }
    const std::pair<const char *, const char *> rows[] = {
        {"Allow Access…", "openSetup"},          {"Open Vesk", "openMain"},
        {"Copy Last Dictation", "copyLastText"}, {"Retry Last Dictation", "retryLast"},
        {"Settings…", "openSettings"},           {"Quit Vesk", "quit"},
    };
    for (const auto &[text, action] : rows) {
        ASSERT_EQ(tray.ask(QString(QStringLiteral("click ") + QString::fromUtf8(text))), u"clicked") << text;
        EXPECT_EQ(shell.called(), action);
    }
    tray.ask(QStringLiteral("activate"));
    EXPECT_EQ(shell.called(), "openMain");
}

TEST(Tray, thePictureSaysWhatDictationDoes)
{
    TrayPeer tray;
    ShellProgram shell;
    ASSERT_EQ(tray.ask(QStringLiteral("item")), u"item");
    const std::pair<const char *, const char *> rows[] = {
        {"idle", "132 132 132 255"},
        {"listening", "255 59 48 255"},
        {"working", "131 131 131 115"},
        {"idle", "132 132 132 255"},
    };
    for (const auto &[indicator, colour] : rows) {
        shell.say(QString(QStringLiteral("indicator ") + QString::fromUtf8(indicator)));
        EXPECT_EQ(tray.ask(QStringLiteral("picture")).section(u' ', 1), QString::fromUtf8(colour));
    }
}

TEST(Tray, theItemComesWithALatePanelAndAgainWithTheNext)
{
    ShellProgram shell;
    shell.say(QStringLiteral("indicator listening"));
    for (int round = 0; round < 3; ++round) {
        TrayPeer tray;
        ASSERT_EQ(tray.ask(QStringLiteral("item")), u"item") << round;
        EXPECT_EQ(tray.ask(QStringLiteral("menu")), Plain) << round;
        EXPECT_EQ(tray.ask(QStringLiteral("picture")).section(u' ', 1, 3), u"255 59 48") << round;
        ASSERT_EQ(tray.ask(QStringLiteral("click Quit Vesk")), u"clicked") << round;
        EXPECT_EQ(shell.called(), "quit") << round;
        tray.kill(); // as a panel that crashes
    }
}

TEST(Tray, aPanelOnTheBusIsPreferredToOneThatEmbeds)
{
    Screen screen;
    const auto panel = startTrayer();
    ASSERT_TRUE(screen.waitUntil([&] { return screen.seen(QStringLiteral("panel")).has_value(); }));
    TrayPeer tray;
    const ShellProgram shell;
    EXPECT_EQ(tray.ask(QStringLiteral("item")), u"item");
    EXPECT_FALSE(screen.seen(QStringLiteral("Vesk")));
}

TEST(Tray, whereItemsAreEmbeddedItStandsInThePanelAndComesBack)
{
    Screen screen;
    ShellProgram shell;
    for (int round = 0; round < 2; ++round) {
        const auto panel = startTrayer();
        // A panel that has just taken the icon in does not pass every click on.
        EXPECT_TRUE(screen.waitUntil([&] {
            const auto icon = screen.seen(QStringLiteral("Vesk"));
            if (!icon || icon->frame.width() < 16) {
                return false;
            }
            screen.click(icon->frame.center().x(), icon->frame.center().y());
            return shell.called(std::chrono::milliseconds(300)) == "openMain";
        })) << round;
    }
}

} // namespace vesk::test
