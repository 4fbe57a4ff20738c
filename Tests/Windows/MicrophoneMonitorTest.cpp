#include "Windows/MicrophoneMonitor.h"

#include "Support/Await.h"
#include "Support/FakeSound.h"

#include <gtest/gtest.h>

namespace vesk {

using namespace Qt::StringLiterals;
using Attention = MicrophoneMonitor::Attention;

namespace {

class MicrophoneMonitorTest : public testing::Test {
protected:
    MicrophoneMonitorTest()
    {
        sound.plug(u"headset"_s, AudioTransport::bluetooth);
        sound.plug(u"lid"_s, AudioTransport::builtIn);
        sound.sound(u"lid"_s, 440);
        QObject::connect(&monitor, &MicrophoneMonitor::levelChanged, [this](float now) {
            level = now;
            loudest = std::max(loudest, now);
        });
    }

    /// The monitor is silent and no microphone is open.
    bool isAtRest() const { return sound.recordings() == 0 && level == 0; }

    test::FakeSound sound{test::FakeSound::Source::tones};
    MicrophoneMonitor monitor{sound, sound};
    float level = 0;
    float loudest = 0;
};

} // namespace

TEST_F(MicrophoneMonitorTest, namesTheDeviceWithoutListeningToIt)
{
    monitor.setAttention(Attention::device);
    EXPECT_EQ(monitor.deviceName(), u"The lid");
    EXPECT_EQ(sound.engineCount(), 0);
    sound.unplug(u"lid"_s);
    EXPECT_TRUE(eventually([&] { return monitor.deviceName() == u"The headset"; }));
    monitor.setAttention(Attention::level);
    EXPECT_TRUE(eventually([&] { return sound.recordings() == 1; }));
    monitor.setAttention(Attention::device);
    EXPECT_TRUE(eventually([&] { return isAtRest(); }));
    monitor.setAttention(Attention::level); // once more, and away again before it has begun
    monitor.setAttention(Attention::device);
    EXPECT_TRUE(eventually([&] { return isAtRest(); }));
    EXPECT_EQ(monitor.deviceName(), u"The headset");
}

TEST_F(MicrophoneMonitorTest, followsTheChoiceAndTheHardware)
{
    monitor.setAttention(Attention::level);
    monitor.setMode(u"system"_s);
    EXPECT_EQ(monitor.deviceName(), u"The headset");
    sound.unplug(u"headset"_s);
    EXPECT_TRUE(eventually([&] { return monitor.deviceName() == u"The lid"; }));
    sound.unplug(u"lid"_s);
    EXPECT_TRUE(eventually([&] { return monitor.problem() == u"No microphone found"; }));
    EXPECT_EQ(monitor.deviceName(), QString());
    sound.plug(u"desk"_s);
    EXPECT_TRUE(
        eventually([&] { return monitor.deviceName() == u"The desk" && monitor.problem().isEmpty(); }));
}

TEST_F(MicrophoneMonitorTest, saysWhyItHearsNothingAndGoesOnWhenItMay)
{
    sound.setDenied(true);
    monitor.setAttention(Attention::level);
    EXPECT_TRUE(eventually([&] { return !monitor.problem().isEmpty(); }));
    sound.setDenied(false);
    EXPECT_TRUE(eventually([&] { return monitor.problem().isEmpty() && loudest > 0.3F; }));
}

} // namespace vesk
