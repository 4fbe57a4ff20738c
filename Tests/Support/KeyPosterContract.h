#pragma once

#include "Platform/KeyPoster.h"
#include "Platform/Qt/SystemClock.h"
#include "Support/Await.h"

#include <functional>
#include <gtest/gtest.h>
#include <memory>

namespace vesk {

/// One way to press keys, and the person at the same keyboard.
struct KeyPosterUnderTest {
    std::unique_ptr<KeyPoster> ours;
    std::function<void(std::chrono::milliseconds)> holdModifier; ///< begins to hold one for so long
};

using KeyPosterMaker = std::function<KeyPosterUnderTest(Clock &)>;

/// What every answer to KeyPoster has to keep.
class KeyPosterContract : public testing::TestWithParam<KeyPosterMaker> {
protected:
    bool released(std::chrono::milliseconds limit)
    {
        return awaited(keyboard.ours->modifiersReleased(limit));
    }

    SystemClock clock;
    KeyPosterUnderTest keyboard = GetParam()(clock);
};

TEST_P(KeyPosterContract, aHeldModifierIsWaitedForAsLongAsTheCallerSays)
{
    using namespace std::chrono_literals;
    ASSERT_TRUE(keyboard.ours->availability().isAvailable());
    EXPECT_TRUE(released(0ms));
    const auto start = clock.monotonic();
    keyboard.holdModifier(300ms);
    EXPECT_FALSE(released(50ms));
    EXPECT_TRUE(released(60s));
    EXPECT_GE(clock.monotonic() - start, 300ms);
}

TEST_P(KeyPosterContract, thePasteKeyGoesDownAndUpAndUnknownKeysAreLeftOut)
{
    constexpr int Key = KeyPoster::PasteKey;
    constexpr quint32 Command = KeyPoster::CommandFlag;
    EXPECT_EQ(awaited(keyboard.ours->pasteboardsOfFocus()).value(0), PasteboardName::general);
    EXPECT_FALSE(awaited(keyboard.ours->post(8, Command, true)));
    EXPECT_FALSE(awaited(keyboard.ours->post(Key, 0, true)));
    EXPECT_TRUE(awaited(keyboard.ours->post(Key, Command, true)));
    EXPECT_TRUE(awaited(keyboard.ours->post(Key, Command, false)));
    EXPECT_TRUE(released(std::chrono::milliseconds(0))) << "what was posted is up again";
}

} // namespace vesk
