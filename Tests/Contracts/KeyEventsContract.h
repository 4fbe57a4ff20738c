#pragma once

#include "Foundation/HotkeyKey.h"
#include "Platform/KeyEvents.h"

#include <functional>
#include <gtest/gtest.h>
#include <vector>

namespace vesk {

/// A keyboard, real or not, and the fingers on it.
class KeyEventsBench {
public:
    virtual ~KeyEventsBench() = default;
    virtual KeyEvents &events() = 0;
    virtual void press(HotkeyKey key) = 0;
    virtual void release(HotkeyKey key) = 0;
    virtual void letter() = 0;
    /// Waits until the condition holds, or for what has been done to arrive when it does not.
    virtual bool wait(const std::function<bool()> &condition) = 0;
};

using KeyEventsBenchMaker = std::unique_ptr<KeyEventsBench> (*)();

/// What the logic relies on, whoever answers.
class KeyEventsContract : public testing::TestWithParam<KeyEventsBenchMaker> {
protected:
    KeyEventHandler recorder()
    {
        return [this](const KeyEvent &event) {
            heard.push_back(event);
            return KeyUse::ignored;
        };
    }
    bool hasHeard(std::size_t count)
    {
        return bench->wait([&] { return heard.size() >= count; }) && heard.size() == count;
    }

    std::unique_ptr<KeyEventsBench> bench = GetParam()();
    std::vector<KeyEvent> heard;
};

TEST_P(KeyEventsContract, eachChangeComesOnceWithTheKeysOwnFlag)
{
    ASSERT_TRUE(bench->events().availability().isAvailable());
    for (const HotkeyKey key : {HotkeyKey::rightOption, HotkeyKey::rightCommand}) {
        ASSERT_TRUE(bench->events().availability(virtualKeyCode(key)).isAvailable());
        const auto monitor = bench->events().addGlobalMonitor(recorder());
        const auto local = bench->events().addLocalMonitor(recorder());
        heard.clear();
        bench->press(key);
        bench->letter();
        bench->release(key);
        ASSERT_TRUE(hasHeard(3));
        EXPECT_EQ(heard[0], (KeyEvent{KeyEventType::flagsChanged, virtualKeyCode(key), modifierFlag(key)}));
        EXPECT_EQ(heard[1].type, KeyEventType::keyDown);
        EXPECT_EQ(heard[2], (KeyEvent{KeyEventType::flagsChanged, virtualKeyCode(key), 0}));
    }
}

TEST_P(KeyEventsContract, monitorsHearUntilTheyAreGone)
{
    auto first = bench->events().addGlobalMonitor(recorder());
    bench->letter();
    ASSERT_TRUE(hasHeard(1));
    const auto second = bench->events().addGlobalMonitor(recorder());
    bench->letter();
    ASSERT_TRUE(hasHeard(3));
    first.reset();
    bench->letter();
    EXPECT_TRUE(hasHeard(4));
}

TEST_P(KeyEventsContract, aMonitorMayEndItselfAndOthersWhileItHears)
{
    std::unique_ptr<KeyMonitor> first;
    std::unique_ptr<KeyMonitor> second;
    const auto end = [&](const KeyEvent &event) {
        heard.push_back(event);
        first.reset();
        return KeyUse::taken;
    };
    first = bench->events().addGlobalMonitor(end);
    bench->letter();
    ASSERT_TRUE(hasHeard(1));
    second = bench->events().addGlobalMonitor(recorder());
    bench->letter();
    EXPECT_TRUE(hasHeard(2));
}

} // namespace vesk
