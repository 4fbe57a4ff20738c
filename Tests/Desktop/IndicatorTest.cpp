// The listening indicator as others see it: the window manager, the programs below it, the person.

#include "Desktop/Peer.h"
#include "Desktop/ShellProgram.h"

#include <gtest/gtest.h>

namespace vesk::test {

namespace {

const QString Title = QStringLiteral("Vesk");

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
    return seen ? run(QStringLiteral("xwininfo"),
                      {QStringLiteral("-shape"), QStringLiteral("-id"), QString::number(seen->id)})
                : QByteArray();
}

void setMonitors(const std::vector<const char *> &commands)
{
    for (const char *command : commands) {
        run(QStringLiteral("xrandr"), QString::fromLatin1(command).split(u' '));
    }
}

} // namespace

TEST(Indicator, takesNeitherFocusNorClicksAndIsInNoList)
{
    Screen screen;
    // Covers the bottom of the screen, and never gets the focus but by a click.
    Peer below(screen, QStringLiteral("xterm"),
               {QStringLiteral("-T"), QStringLiteral("below"), QStringLiteral("-geometry"),
                QStringLiteral("200x58+0+0"), QStringLiteral("-e"), QStringLiteral("cat")},
               QStringLiteral("^below$"));
    Peer front(screen, QStringLiteral("xterm"),
               {QStringLiteral("-T"), QStringLiteral("front"), QStringLiteral("-geometry"),
                QStringLiteral("40x10+0+0"), QStringLiteral("-e"), QStringLiteral("cat")},
               QStringLiteral("^front$"));
    ShellProgram shell;
    shell.say(QStringLiteral("listening locked"));
    const QRect frame((1280 - 129) / 2, 800 - 28 - 34, 129, 34);
    ASSERT_TRUE(standsAt(screen, frame));
    const auto seen = screen.seen(Title);
    EXPECT_FALSE(seen->isManaged);
    EXPECT_TRUE(screen.waitForNoWindow(QStringLiteral("^Vesk$"), std::chrono::milliseconds(0)));
    EXPECT_EQ(screen.activeWindow(), front.window());
    EXPECT_TRUE(screen.isOnTop(seen->id));

    screen.click(frame.center().x(), frame.center().y());
    EXPECT_TRUE(screen.waitUntil([&] { return screen.activeWindow() == below.window(); }));
    EXPECT_TRUE(screen.isOnTop(seen->id)); // also above the window that was raised by the click

    shell.say(QStringLiteral("flash Copied"));
    EXPECT_TRUE(screen.waitUntil([&] { return !screen.seen(Title); })) << "the message stays";
    EXPECT_EQ(screen.activeWindow(), below.window());
}

TEST(Indicator, growsWithTheScaleOfTheDesktop)
{
    Screen screen;
    screen.movePointer(600, 100);
    ShellProgram shell({{QStringLiteral("QT_SCALE_FACTOR"), QStringLiteral("2")}});
    shell.say(QStringLiteral("listening"));
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
    shell.say(QStringLiteral("listening"));
    EXPECT_TRUE(standsAt(screen, QRect(266, 800 - 62, 107, 34)));
    screen.movePointer(900, 100);
    shell.say(QStringLiteral("listening"));
    EXPECT_TRUE(standsAt(screen, QRect(640 + 266, 700 - 62, 107, 34)));
    // The second screen goes while the indicator is on it.
    setMonitors({"--delmonitor right", "--delmonitor left"});
    EXPECT_TRUE(standsAt(screen, QRect((1280 - 107) / 2, 800 - 62, 107, 34)));
}

TEST(Indicator, isCutOutUntilACompositorRuns)
{
    Screen screen;
    ShellProgram shell;
    shell.say(QStringLiteral("listening"));
    ASSERT_TRUE(standsAt(screen, QRect((1280 - 107) / 2, 800 - 62, 107, 34)));
    EXPECT_FALSE(shape(screen).contains("No window shape defined")) << shape(screen).constData();
    const Process compositor(QStringLiteral("picom"),
                             {{QStringLiteral("--backend"), QStringLiteral("xrender"),
                               QStringLiteral("--config"), QStringLiteral("/dev/null")},
                              QProcess::SeparateChannels,
                              {},
                              {}});
    EXPECT_TRUE(screen.waitUntil([&] {
        shell.say(QStringLiteral("listening"));
        return shape(screen).contains("No window shape defined");
    })) << shape(screen).constData();
}

} // namespace vesk::test
