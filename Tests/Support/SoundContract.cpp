#include "Support/SoundContract.h"

#include "Foundation/VeskError.h"
#include "Support/Await.h"

#include <gmock/gmock.h>

using namespace Qt::StringLiterals;

namespace vesk::test {

namespace {

constexpr double Before = 500; // hertz; none a multiple of another
constexpr double After = 1'300;
constexpr double Speaker = 2'300;

/// The devices' own names, in the system's order.
QStringList names(const AudioDevices &devices)
{
    QStringList names;
    for (const AudioDeviceID device : devices.inputDevices()) {
        names << devices.name(device).value_or(u"?"_s);
    }
    return names;
}

QString defaultName(const AudioDevices &devices)
{
    const auto device = devices.defaultInput();
    return device ? devices.name(*device).value_or(u"?"_s) : QString();
}

} // namespace

void SoundContract::plug(const QString &name, double tone, AudioTransport transport)
{
    rig().plug(name, transport);
    rig().sound(name, tone);
}

void SoundContract::hearTheDesk()
{
    plug(u"desk"_s, Before);
    rig().sound(u"speaker"_s, Speaker);
    input.start(u"system"_s, recording.consumer());
    EXPECT_TRUE(recording.awaitTone(Before));
}

void SoundContract::expectNoMicrophone()
{
    Recording nothing;
    AudioInput second(rig().devices(), rig().engines());
    EXPECT_THAT([&] { second.start(u"system"_s, nothing.consumer()); },
                testing::Throws<VeskError>(VeskError::noMicrophone()));
    EXPECT_EQ(second.stats().device, u"?");
}

TEST_P(SoundContract, whatIsSaidIsHeardAsItIsUntilTheStop)
{
    const auto press = std::chrono::steady_clock::now();
    hearTheDesk();
    input.stop();

    const AudioStats stats = input.stats();
    EXPECT_EQ(stats.device, u"The desk");
    EXPECT_EQ(stats.restarts, 0);
    EXPECT_EQ(stats.frames, recording.sound().frames()) << "nothing may come after the stop";
    EXPECT_NEAR(static_cast<double>(stats.peak), (20 * std::log10(0.5 / std::sqrt(2)) + 50) / 45, 0.02);
    EXPECT_LT(recording.strongest(Speaker), 0.01);
    ASSERT_TRUE(input.firstSample());
    EXPECT_LT(*input.firstSample() - press, std::chrono::seconds(5));

    input.start(u"system"_s, recording.consumer());
    EXPECT_TRUE(recording.awaitFrames(stats.frames + 1)) << "an input can be started again";
}

TEST_P(SoundContract, microphonesAreListedAndASpeakersMonitorIsNone)
{
    EXPECT_TRUE(rig().devices().availability().isAvailable());
    EXPECT_TRUE(eventually([&] { return names(rig().devices()).isEmpty(); }));
    EXPECT_EQ(rig().devices().defaultInput(), std::nullopt);
    expectNoMicrophone();
    rig().plug(u"desk"_s);
    rig().plug(u"headset"_s, AudioTransport::bluetooth);
    EXPECT_TRUE(eventually([&] { return names(rig().devices()).size() == 2; }));
    EXPECT_EQ(names(rig().devices()), (QStringList{u"The desk"_s, u"The headset"_s}));
    EXPECT_TRUE(eventually([&] { return defaultName(rig().devices()) == u"The desk"; }));
    EXPECT_FALSE(rig().devices().name(9'999));
    EXPECT_FALSE(rig().devices().transport(9'999));
}

TEST_P(SoundContract, aHeadsetThatIsTheDefaultIsPassedOverForTheComputersOwnInAutoOnly)
{
    plug(u"headset"_s, Before, AudioTransport::bluetooth);
    rig().plug(u"webcam"_s, AudioTransport::other);
    plug(u"inside"_s, After, AudioTransport::builtIn);
    EXPECT_TRUE(eventually([&] { return names(rig().devices()).size() == 3; }));
    for (const auto &[mode, tone, name] :
         {std::tuple(u"system"_s, Before, u"The headset"_s), {u"auto"_s, After, u"The inside"_s}}) {
        input.start(mode, recording.consumer());
        EXPECT_TRUE(recording.awaitTone(tone)) << mode.toStdString();
        EXPECT_EQ(input.stats().device, name);
    }
    rig().unplug(u"inside"_s);
    EXPECT_TRUE(recording.awaitTone(Before)) << "the default replaces it";
}

TEST_P(SoundContract, anotherDefaultIsFollowedAndAnUnpluggedDeviceReplaced)
{
    plug(u"desk"_s, Before);
    plug(u"webcam"_s, After);
    input.start(u"system"_s, recording.consumer());
    EXPECT_TRUE(recording.awaitTone(Before));
    rig().makeDefault(u"webcam"_s);
    EXPECT_TRUE(recording.awaitTone(After));
    EXPECT_EQ(input.stats().restarts, 1);
    rig().unplug(u"webcam"_s);
    EXPECT_TRUE(recording.awaitTone(Before));
    EXPECT_GE(input.stats().restarts, 2);
}

TEST_P(SoundContract, withoutTheLastMicrophoneNothingOfTheSpeakerIsHeardAndTheNextOneIs)
{
    hearTheDesk();
    rig().unplug(u"desk"_s);
    EXPECT_TRUE(eventually([&] { return names(rig().devices()).isEmpty(); }));
    EXPECT_TRUE(eventually([&] { return input.stats().restarts > 0; }));
    expectNoMicrophone();
    plug(u"webcam"_s, After);
    EXPECT_TRUE(recording.awaitTone(After));
    EXPECT_LT(recording.strongest(Speaker), 0.01);
    EXPECT_GE(recording.strongest(Before), 0.48) << "what was said before is kept";
}

TEST_P(SoundContract, aRecordingWhoseMicrophoneIsGoneEndsAndIsNotMovedToTheSpeaker)
{
    plug(u"desk"_s, Before);
    rig().sound(u"speaker"_s, Speaker);
    const auto engine = rig().engines().make(); // nobody attaches it again
    EXPECT_TRUE(eventually([&] { return engine->inputFormat().isUsable(); }));
    const auto consumer = recording.consumer();
    engine->installTap(2'048, engine->inputFormat(),
                       [&](const AudioBlock &block, auto) { consumer(block, 0); });
    engine->start();
    EXPECT_TRUE(recording.awaitTone(Before));
    EXPECT_TRUE(engine->isRunning());
    rig().unplug(u"desk"_s);
    EXPECT_TRUE(eventually([&] { return !engine->isRunning(); }, std::chrono::seconds(20)));
    EXPECT_LT(recording.strongest(Speaker), 0.01);
}

TEST_P(SoundContract, aRecordingGoesOnWhenTheServerIsBack)
{
    hearTheDesk();
    rig().endServer();
    EXPECT_TRUE(eventually([&] { return input.stats().restarts > 0; }));
    EXPECT_FALSE(rig().devices().availability().isAvailable());
    expectNoMicrophone();
    rig().startServer();
    rig().sound(u"desk"_s, After);
    EXPECT_TRUE(recording.awaitTone(After));
    EXPECT_GE(recording.strongest(Before), 0.48) << "what was said before is kept";
    EXPECT_TRUE(rig().devices().availability().isAvailable());
}

TEST_P(SoundContract, aServerThatHangsIsNotWaitedForWithoutEndAndRecordsAgainWhenItRecovers)
{
    using Clock = std::chrono::steady_clock;
    hearTheDesk();
    rig().freezeServer();
    const auto release = Clock::now();
    input.stop();
    EXPECT_LT(Clock::now() - release, std::chrono::seconds(1)) << "a stop asks nobody";
    const auto press = Clock::now();
    EXPECT_THROW(input.start(u"system"_s, recording.consumer()), UserError);
    EXPECT_LT(Clock::now() - press, std::chrono::seconds(10));
    rig().thawServer();
    rig().sound(u"desk"_s, After);
    input.start(u"system"_s, recording.consumer());
    EXPECT_TRUE(recording.awaitTone(After));
}

} // namespace vesk::test
