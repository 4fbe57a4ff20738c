#include "Contracts/KeyEventsContract.h"
#include "Desktop/FieldPrograms.h"
#include "Desktop/FieldReader.h"
#include "Dictation/Hotkey.h"
#include "Platform/Linux/Keys/XInputKeyEvents.h"
#include "Support/Await.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QStringList>

#include <gtest/gtest.h>

namespace vesk::test {

using namespace Qt::StringLiterals;

namespace {

constexpr int LeftControl = 37;
constexpr int KeyA = 38;
constexpr int LeftAlt = 64;
constexpr int RightControl = 105;
constexpr int RightAlt = 108;
constexpr int RightSuper = 134;

class KeysTest : public testing::Test {
protected:
    KeysTest()
    {
        hotkey.onPress = [this](HotkeyKey key) { said.append(u"P:" + rawValue(key)); };
        hotkey.onRelease = [this](HotkeyKey key) { said.append(u"R:" + rawValue(key)); };
        hotkey.onOtherKey = [this] { said.append(u"O"_s); };
        hotkey.start();
    }
    ~KeysTest() override
    {
        for (const int key : {LeftControl, KeyA, LeftAlt, RightControl, RightAlt, RightSuper}) {
            screen.keyUp(key);
        }
        setLayout(u"us"_s);
    }

    static void setLayout(const QString &layout) { run(u"setxkbmap"_s, {layout}); }

    /// What the hotkey has said once all keys pressed until now have gone through: a letter is the last of
    /// them.
    QString heard()
    {
        screen.keyDown(RightControl); // a marker that is always reported
        screen.keyUp(RightControl);
        static const QString marker = u"P:rightCommand R:rightCommand"_s;
        eventually([this] { return said.join(u' ').endsWith(marker); }, std::chrono::seconds(20));
        QString all = said.join(u' ');
        all.chop(marker.size());
        said.clear();
        return all.trimmed();
    }

    Screen screen;
    InjectedKeys injected;
    XInputKeyEvents events{injected};
    Hotkey hotkey =
        Hotkey(events, [] { return std::vector{HotkeyKey::rightOption, HotkeyKey::rightCommand}; });
    QStringList said;
};

class DisplayBench final : public KeyEventsBench {
public:
    KeyEvents &events() override { return m_events; }
    void press(HotkeyKey key) override { m_screen.keyDown(place(key)); }
    void release(HotkeyKey key) override { m_screen.keyUp(place(key)); }
    void letter() override { m_screen.tap(KeyA); }
    bool wait(const std::function<bool()> &condition) override
    {
        return eventually(condition, std::chrono::seconds(20));
    }

private:
    static int place(HotkeyKey key) { return key == HotkeyKey::rightOption ? RightAlt : RightControl; }

    Screen m_screen;
    InjectedKeys m_injected;
    XInputKeyEvents m_events{m_injected};
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Display, KeyEventsContract, testing::Values([]() -> std::unique_ptr<KeyEventsBench> {
                             return std::make_unique<DisplayBench>();
                         }));

TEST_F(KeysTest, aLayoutWithAltGrIsToldFromOneWithout)
{
    const auto isAltGr = [this] { return events.typesCharacters(virtualKeyCode(HotkeyKey::rightOption)); };
    EXPECT_FALSE(isAltGr());
    setLayout(u"de"_s);
    EXPECT_TRUE(eventually([&] {
        heard(); // lets the news of the layout arrive
        return isAltGr();
    }));
    EXPECT_FALSE(events.typesCharacters(virtualKeyCode(HotkeyKey::rightCommand)));
}

TEST_F(KeysTest, theRightKeysAreToldFromAllOthersInEveryLayout)
{
    for (const QString &layout : {u"us"_s, u"de"_s, u"ru"_s}) {
        setLayout(layout);
        screen.tap(RightAlt);
        EXPECT_EQ(heard(), u"P:rightOption R:rightOption"_s) << qPrintable(layout);
        screen.tap(LeftAlt);
        screen.tap(KeyA);
        EXPECT_EQ(heard(), QString()) << qPrintable(layout);
        screen.tap(RightSuper);
        EXPECT_EQ(heard(), u"P:rightCommand R:rightCommand"_s) << qPrintable(layout);
        screen.keyDown(RightAlt);
        screen.tap(KeyA);
        screen.tap(LeftControl);
        screen.keyUp(RightAlt);
        EXPECT_EQ(heard(), u"P:rightOption O O O R:rightOption"_s) << qPrintable(layout);
    }
}

TEST_F(KeysTest, twoKeysThatStandForOneAreReleasedWithTheLast)
{
    screen.keyDown(RightSuper);
    screen.keyDown(RightControl);
    screen.keyUp(RightSuper);
    screen.keyUp(RightControl);
    EXPECT_TRUE(eventually([this] { return said.size() >= 2; }));
    EXPECT_EQ(said.join(u' '), u"P:rightCommand R:rightCommand"_s);
}

TEST_F(KeysTest, aKeyThatIsDownWhenWatchingBeginsStartsNothing)
{
    hotkey.stop();
    screen.keyDown(RightAlt);
    XInputKeyEvents lateEvents(injected);
    Hotkey late(lateEvents, [] { return std::vector{HotkeyKey::rightOption}; });
    QStringList lateSaid;
    late.onPress = [&](HotkeyKey) { lateSaid.append(u"P"_s); };
    late.onRelease = [&](HotkeyKey) { lateSaid.append(u"R"_s); };
    late.start();
    hotkey.start();
    screen.keyUp(RightAlt);
    EXPECT_EQ(heard(), QString());
    EXPECT_EQ(lateSaid, QStringList());
    screen.tap(RightAlt);
    EXPECT_EQ(heard(), u"P:rightOption R:rightOption"_s);
    EXPECT_EQ(lateSaid, (QStringList{u"P"_s, u"R"_s}));
}

TEST_F(KeysTest, aReleaseThatWaitedForABusyProgramSaysForHowLong)
{
    using Clock = std::chrono::steady_clock;
    std::optional<Clock::time_point> released;
    hotkey.onRelease = [&](HotkeyKey) { released = Clock::now() - hotkey.age(); };
    screen.keyDown(RightAlt);
    ASSERT_TRUE(eventually([this] { return !said.isEmpty(); }));
    const auto before = Clock::now();
    screen.keyUp(RightAlt);
    const auto after = Clock::now();
    while (Clock::now() < after + std::chrono::milliseconds(400)) {
        // too busy to read events
    }
    ASSERT_TRUE(eventually([&] { return released.has_value(); }));
    constexpr std::chrono::milliseconds Rounding(1);
    EXPECT_GE(*released, before - Rounding);
    EXPECT_LE(*released, after + Rounding);
}

TEST_F(KeysTest, keysThatVeskPressesItselfAreNotReported)
{
    screen.keyDown(RightAlt);
    for (const int key : {LeftControl, 55}) {
        injected.expect(key, true);
        injected.expect(key, false);
        screen.tap(key);
    }
    screen.keyUp(RightAlt);
    EXPECT_EQ(heard(), u"P:rightOption R:rightOption"_s);
}

TEST_F(KeysTest, aReleaseThatNobodySawIsMadeUp)
{
    screen.keyDown(RightAlt);
    ASSERT_TRUE(eventually([this] { return said.size() == 1; }));
    injected.expect(RightAlt, false); // the release is swallowed, as by a device that is pulled out
    screen.keyUp(RightAlt);
    EXPECT_TRUE(eventually([this] { return said.size() == 2; }));
    EXPECT_EQ(heard(), u"P:rightOption R:rightOption"_s);
}

TEST_F(KeysTest, aLockedScreenEndsTheHoldAndStartsNothing)
{
    const auto announce = [](bool isActive) {
        QDBusMessage signal = QDBusMessage::createSignal(
            u"/org/freedesktop/ScreenSaver"_s, u"org.freedesktop.ScreenSaver"_s, u"ActiveChanged"_s);
        signal << isActive;
        QDBusConnection::sessionBus().send(signal);
    };
    screen.keyDown(RightAlt);
    ASSERT_TRUE(eventually([this] { return said.size() == 1; }));
    announce(true);
    ASSERT_TRUE(eventually([this] { return said.size() == 2; }));
    EXPECT_EQ(said.join(u' '), u"P:rightOption R:rightOption"_s);
    said.clear();
    screen.keyUp(RightAlt);
    screen.tap(RightAlt);
    injected.expect(KeyA, true); // a marker: nothing is reported before it has come through
    screen.tap(KeyA);
    ASSERT_TRUE(eventually([this] {
        const bool isOnItsWay = injected.take(KeyA, true);
        if (isOnItsWay) {
            injected.expect(KeyA, true);
        }
        return !isOnItsWay;
    }));
    announce(false);
    EXPECT_TRUE(eventually([this] {
        screen.tap(RightControl);
        return !said.isEmpty();
    }));
    EXPECT_TRUE(said.join(u' ').startsWith(u"P:rightCommand"_s)) << qPrintable(said.join(u' '));
}

TEST_F(KeysTest, aLockerThatCoversTheScreenCountsAsALock)
{
    const Process locker(
        u"/usr/bin/python3"_s,
        {{QStringLiteral(VESK_TEST_PEERS "/cover_screen.py")}, QProcess::SeparateChannels, {}, {}});
    ASSERT_TRUE(eventually([this] {
        screen.tap(RightAlt);
        const bool isSilent = said.isEmpty();
        said.clear();
        return isSilent;
    }));
}

// Menu bars open when a lone Alt is let go, and what is pasted then goes nowhere.
TEST_F(KeysTest, theKeyAloneLeavesTheFocusInTheField)
{
    std::vector<std::function<std::unique_ptr<Peer>()>> programs = {[this] {
        return std::make_unique<Peer>(screen, QStringLiteral(VESK_TEST_MENU_WINDOW),
                                      QStringList{u"menu window"_s}, u"^menu window$"_s);
    }};
    if (isFirefoxTried()) {
        programs.emplace_back([this] { return startFirefox(screen, u"area"_s, {}); });
    }
    FieldReader reader;
    for (const auto &start : programs) {
        const auto window = start();
        const auto text = [&](const QString &expected) {
            return reader.textWhen(window->process().id(),
                                   [&](const QString &found) { return found == expected; });
        };
        ASSERT_EQ(text({}), QString());
        screen.keyDown(RightAlt);
        ASSERT_TRUE(eventually([this] { return said.size() == 1; }));
        screen.keyUp(RightAlt);
        ASSERT_TRUE(eventually([this] { return said.size() == 2; }));
        screen.tap(KeyA);
        EXPECT_EQ(text(u"a"_s), u"a"_s);
        EXPECT_EQ(heard(), u"P:rightOption R:rightOption"_s);
    }
}

TEST_F(KeysTest, aMenuThatHasGrabbedTheKeyboardHidesNoKey)
{
    const auto grab = screen.grabKeyboard();
    screen.tap(RightAlt);
    EXPECT_EQ(heard(), u"P:rightOption R:rightOption"_s);
}

TEST(KeyEvents, theFnKeyIsSaidToBeOutOfReach)
{
    InjectedKeys injected;
    const XInputKeyEvents events(injected);
    EXPECT_TRUE(events.availability(virtualKeyCode(HotkeyKey::rightOption)).isAvailable());
    EXPECT_FALSE(events.availability(virtualKeyCode(HotkeyKey::fn)).isAvailable());
}

} // namespace vesk::test
