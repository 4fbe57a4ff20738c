// The status item as panels get it: over the session bus, and embedded over X11.

#include "Desktop/Screen.h"
#include "Desktop/ShellProgram.h"
#include "Desktop/TrayPeer.h"

#include <gtest/gtest.h>

namespace vesk::test {

using namespace Qt::StringLiterals;

namespace {

std::unique_ptr<Process> startTrayer()
{
    return std::make_unique<Process>(u"trayer"_s,
                                     QStringList{u"--edge"_s, u"top"_s, u"--widthtype"_s, u"request"_s});
}

const QString Plain = u"Open Vesk|-|Settings…|Quit Vesk"_s;

} // namespace

TEST(Tray, theMenuIsWhatIsTrueWhenItOpens)
{
    TrayPeer tray;
    ShellProgram shell;
    ASSERT_EQ(tray.ask(u"item"_s), u"item");
    EXPECT_EQ(tray.ask(u"title"_s), u"Vesk");
    const std::pair<QString, QString> rows[] = {
        {u"clear"_s, Plain},
        {u"last"_s, u"Open Vesk|Copy Last Dictation|-|Settings…|Quit Vesk"_s},
        {u"access"_s, u"Allow Access…|-|Open Vesk|Copy Last Dictation|-|Settings…|Quit Vesk"_s},
        {u"retry"_s,
         u"Allow Access…|-|Open Vesk|Copy Last Dictation|Retry Last Dictation|-|Settings…|Quit Vesk"_s},
        {u"clear"_s, Plain},
        {u"retry"_s, u"Open Vesk|Retry Last Dictation|-|Settings…|Quit Vesk"_s},
        {u"clear"_s, Plain},
        {u"error No sense in my_file & more"_s,
         u"[No sense in my_file & more]|-|Open Vesk|-|Settings…|Quit Vesk"_s},
        {u"access"_s, u"Allow Access…|[No sense in my_file & more]|-|Open Vesk|-|Settings…|Quit Vesk"_s}};
    for (const auto &[change, menu] : rows) {
        shell.say(u"state "_s + change);
        EXPECT_EQ(tray.ask(u"menu"_s), menu) << change.toStdString();
    }
}

TEST(Tray, whatIsClickedIsDone)
{
    TrayPeer tray;
    ShellProgram shell;
    ASSERT_EQ(tray.ask(u"item"_s), u"item");
    for (const char *state : {"access", "last", "retry"}) {
        shell.say(QString(u"state "_s + QString::fromUtf8(state)));
    }
    const std::pair<const char *, const char *> rows[] = {
        {"Allow Access…", "openSetup"},          {"Open Vesk", "openMain"},
        {"Copy Last Dictation", "copyLastText"}, {"Retry Last Dictation", "retryLast"},
        {"Settings…", "openSettings"},           {"Quit Vesk", "quit"},
    };
    for (const auto &[text, action] : rows) {
        ASSERT_EQ(tray.ask(QString(u"click "_s + QString::fromUtf8(text))), u"clicked") << text;
        EXPECT_EQ(shell.called(), action);
    }
    tray.ask(u"activate"_s);
    EXPECT_EQ(shell.called(), "openMain");
}

TEST(Tray, thePictureSaysWhatDictationDoes)
{
    TrayPeer tray;
    ShellProgram shell;
    ASSERT_EQ(tray.ask(u"item"_s), u"item");
    const std::pair<QString, QString> rows[] = {{u"idle"_s, u"132 132 132 255"_s},
                                                {u"listening"_s, u"255 59 48 255"_s},
                                                {u"working"_s, u"131 131 131 115"_s},
                                                {u"idle"_s, u"132 132 132 255"_s}};
    for (const auto &[indicator, colour] : rows) {
        shell.say(u"indicator "_s + indicator);
        EXPECT_EQ(tray.ask(u"picture"_s).section(u' ', 1), colour);
    }
}

TEST(Tray, theItemComesWithALatePanelAndAgainWithTheNext)
{
    ShellProgram shell;
    shell.say(u"indicator listening"_s);
    for (int round = 0; round < 3; ++round) {
        TrayPeer tray;
        ASSERT_EQ(tray.ask(u"item"_s), u"item") << round;
        EXPECT_EQ(tray.ask(u"menu"_s), Plain) << round;
        EXPECT_EQ(tray.ask(u"picture"_s).section(u' ', 1, 3), u"255 59 48") << round;
        ASSERT_EQ(tray.ask(u"click Quit Vesk"_s), u"clicked") << round;
        EXPECT_EQ(shell.called(), "quit") << round;
        tray.kill(); // as a panel that crashes
    }
}

TEST(Tray, aPanelOnTheBusIsPreferredToOneThatEmbeds)
{
    Screen screen;
    const auto panel = startTrayer();
    ASSERT_TRUE(screen.waitUntil([&] { return screen.seen(u"panel"_s).has_value(); }));
    TrayPeer tray;
    const ShellProgram shell;
    EXPECT_EQ(tray.ask(u"item"_s), u"item");
    EXPECT_FALSE(screen.seen(u"Vesk"_s));
}

TEST(Tray, whereItemsAreEmbeddedItStandsInThePanelAndComesBack)
{
    Screen screen;
    ShellProgram shell;
    for (int round = 0; round < 2; ++round) {
        const auto panel = startTrayer();
        // A panel that has just taken the icon in does not pass every click on.
        EXPECT_TRUE(screen.waitUntil([&] {
            const auto icon = screen.seen(u"Vesk"_s);
            if (!icon || icon->frame.width() < 16) {
                return false;
            }
            screen.click(icon->frame.center().x(), icon->frame.center().y());
            return shell.called(std::chrono::milliseconds(300)) == "openMain";
        })) << round;
    }
}

} // namespace vesk::test
