// The listening indicator as others see it: the window manager, the programs below it, the person.

#include "Desktop/Peer.h"
#include "Desktop/ShellProgram.h"

#include <gtest/gtest.h>

namespace vesk::test {

using namespace Qt::StringLiterals;

namespace {

const QString Title = u"Vesk"_s;

/// Waits until the indicator stands there.
bool standsAt(Screen &screen, const QRect &frame)
{
    return screen.waitUntil(
        [&] {
            const auto seen = screen.seen(Title);
            return seen && seen->frame == frame;
        },
        std::chrono::seconds(20));
}

QByteArray shape(Screen &screen)
{
    const auto seen = screen.seen(Title);
    return seen ? run(u"xwininfo"_s, {u"-shape"_s, u"-id"_s, QString::number(seen->id)}) : QByteArray();
}

void setMonitors(const std::vector<const char *> &commands)
{
    for (const char *command : commands) {
        run(u"xrandr"_s, QString::fromLatin1(command).split(u' '));
    }
}

} // namespace

TEST(Indicator, takesNeitherFocusNorClicksAndIsInNoList)
{
    Screen screen;
    // Covers the bottom of the screen, and never gets the focus but by a click.
    const QStringList rest = {u"-e"_s, u"cat"_s};
    Peer below(screen, u"xterm"_s, QStringList{u"-T"_s, u"below"_s, u"-geometry"_s, u"200x58+0+0"_s} + rest,
               u"^below$"_s);
    Peer front(screen, u"xterm"_s, QStringList{u"-T"_s, u"front"_s, u"-geometry"_s, u"40x10+0+0"_s} + rest,
               u"^front$"_s);
    ShellProgram shell;
    shell.say(u"listening locked"_s);
    const QRect frame((1280 - 129) / 2, 800 - 28 - 34, 129, 34);
    ASSERT_TRUE(standsAt(screen, frame));
    const auto seen = screen.seen(Title);
    EXPECT_FALSE(seen->isManaged);
    EXPECT_TRUE(screen.waitForNoWindow(u"^Vesk$"_s, std::chrono::milliseconds(0)));
    EXPECT_EQ(screen.activeWindow(), front.window());
    EXPECT_TRUE(screen.isOnTop(seen->id));

    screen.click(frame.center().x(), frame.center().y());
    EXPECT_TRUE(screen.waitUntil([&] { return screen.activeWindow() == below.window(); }));
    EXPECT_TRUE(screen.isOnTop(seen->id)); // also above the window that was raised by the click

    shell.say(u"flash Copied"_s);
    EXPECT_TRUE(screen.waitUntil([&] { return !screen.seen(Title); })) << "the message stays";
    EXPECT_EQ(screen.activeWindow(), below.window());
}

TEST(Indicator, growsWithTheScaleOfTheDesktop)
{
    Screen screen;
    screen.movePointer(600, 100);
    ShellProgram shell({{u"QT_SCALE_FACTOR"_s, u"2"_s}});
    shell.say(u"listening"_s);
    // Logical pixels of a screen of 640 by 400.
    EXPECT_TRUE(standsAt(screen, QRect(2 * ((640 - 107) / 2), 2 * (400 - 62), 214, 68)));
}

TEST(Indicator, standsOnTheScreenOfThePointerAndFollowsChanges)
{
    Screen screen;
    setMonitors(
        {"--setmonitor left 640/170x800/212+0+0 screen", "--setmonitor right 640/170x700/212+640+0 none"});
    ShellProgram shell;
    screen.movePointer(100, 100);
    shell.say(u"listening"_s);
    EXPECT_TRUE(standsAt(screen, QRect(266, 800 - 62, 107, 34)));
    screen.movePointer(900, 100);
    shell.say(u"listening"_s);
    EXPECT_TRUE(standsAt(screen, QRect(640 + 266, 700 - 62, 107, 34)));
    // The second screen goes while the indicator is on it.
    setMonitors({"--delmonitor right", "--delmonitor left"});
    EXPECT_TRUE(standsAt(screen, QRect((1280 - 107) / 2, 800 - 62, 107, 34)));
}

TEST(Indicator, isCutOutUntilACompositorRuns)
{
    Screen screen;
    ShellProgram shell;
    shell.say(u"listening"_s);
    ASSERT_TRUE(standsAt(screen, QRect((1280 - 107) / 2, 800 - 62, 107, 34)));
    EXPECT_FALSE(shape(screen).contains("No window shape defined")) << shape(screen).constData();
    const Process compositor(u"picom"_s,
                             QStringList{u"--backend"_s, u"xrender"_s, u"--config"_s, u"/dev/null"_s});
    EXPECT_TRUE(screen.waitUntil([&] {
        shell.say(u"listening"_s);
        return shape(screen).contains("No window shape defined");
    })) << shape(screen).constData();
}

} // namespace vesk::test
