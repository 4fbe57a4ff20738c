#include "Support/SoundContract.h"

#include "Dictation/AudioInput.h"
#include "Dictation/Microphone.h"
#include "Foundation/VeskError.h"
#include "Support/Await.h"
#include "Support/Recording.h"

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

VeskError::Case failureOf(AudioInput &input, Recording &recording)
{
    try {
        input.start(u"system"_s, recording.consumer());
    } catch (const VeskError &error) {
        return error.errorCase();
    }
    throw std::runtime_error("the recording began");
}

} // namespace

TEST_P(SoundContract, whatIsSaidIsHeardAsItIsUntilTheStop)
{
    rig().plug(u"desk"_s);
    rig().sound(u"desk"_s, Before);
    rig().sound(u"speaker"_s, Speaker);
    Recording recording;
    AudioInput input(rig().devices(), rig().engines());
    const auto press = std::chrono::steady_clock::now();
    input.start(u"system"_s, recording.consumer());
    EXPECT_TRUE(recording.awaitTone(Before));
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
    {
        Recording recording;
        AudioInput input(rig().devices(), rig().engines());
        EXPECT_EQ(failureOf(input, recording), VeskError::Case::noMicrophone);
        EXPECT_EQ(input.stats().device, u"?");
    }
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
    rig().plug(u"headset"_s, AudioTransport::bluetooth);
    rig().plug(u"webcam"_s, AudioTransport::other);
    rig().plug(u"inside"_s, AudioTransport::builtIn);
    rig().sound(u"headset"_s, Before);
    rig().sound(u"inside"_s, After);
    EXPECT_TRUE(eventually([&] { return names(rig().devices()).size() == 3; }));
    for (const auto &[mode, tone, name] :
         {std::tuple(u"auto"_s, After, u"The inside"_s), {u"system"_s, Before, u"The headset"_s}}) {
        Recording recording;
        AudioInput input(rig().devices(), rig().engines());
        input.start(mode, recording.consumer());
        EXPECT_TRUE(recording.awaitTone(tone)) << mode.toStdString();
        EXPECT_EQ(input.stats().device, name);
    }
}

TEST_P(SoundContract, anotherDefaultIsFollowedAndAnUnpluggedDeviceReplaced)
{
    rig().plug(u"desk"_s);
    rig().plug(u"webcam"_s);
    rig().sound(u"desk"_s, Before);
    rig().sound(u"webcam"_s, After);
    Recording recording;
    AudioInput input(rig().devices(), rig().engines());
    input.start(u"system"_s, recording.consumer());
    EXPECT_TRUE(recording.awaitTone(Before));
    rig().makeDefault(u"webcam"_s);
    EXPECT_TRUE(recording.awaitTone(After));
    EXPECT_EQ(input.stats().restarts, 1);
    rig().unplug(u"webcam"_s);
    EXPECT_TRUE(recording.awaitTone(Before));
    EXPECT_GE(input.stats().restarts, 2);
}

TEST_P(SoundContract, aChosenDeviceThatIsUnpluggedIsReplacedByTheDefault)
{
    rig().plug(u"headset"_s, AudioTransport::bluetooth);
    rig().plug(u"inside"_s, AudioTransport::builtIn);
    rig().sound(u"headset"_s, After);
    rig().sound(u"inside"_s, Before);
    EXPECT_TRUE(eventually([&] { return names(rig().devices()).size() == 2; }));
    Recording recording;
    AudioInput input(rig().devices(), rig().engines());
    input.start(u"auto"_s, recording.consumer());
    EXPECT_TRUE(recording.awaitTone(Before));
    rig().unplug(u"inside"_s);
    EXPECT_TRUE(recording.awaitTone(After));
}

TEST_P(SoundContract, withoutTheLastMicrophoneNothingOfTheSpeakerIsHeardAndTheNextOneIs)
{
    rig().plug(u"desk"_s);
    rig().sound(u"desk"_s, Before);
    rig().sound(u"speaker"_s, Speaker);
    Recording recording;
    AudioInput input(rig().devices(), rig().engines());
    input.start(u"system"_s, recording.consumer());
    EXPECT_TRUE(recording.awaitTone(Before));
    rig().unplug(u"desk"_s);
    EXPECT_TRUE(eventually([&] { return names(rig().devices()).isEmpty(); }));
    EXPECT_TRUE(eventually([&] { return input.stats().restarts > 0; }));
    {
        Recording nothing;
        AudioInput second(rig().devices(), rig().engines());
        EXPECT_EQ(failureOf(second, nothing), VeskError::Case::noMicrophone);
    }
    rig().plug(u"webcam"_s);
    rig().sound(u"webcam"_s, After);
    EXPECT_TRUE(recording.awaitTone(After));
    EXPECT_LT(recording.strongest(Speaker), 0.01);
    EXPECT_GE(recording.strongest(Before), 0.48) << "what was said before is kept";
}

TEST_P(SoundContract, aRecordingWhoseMicrophoneIsGoneEndsAndIsNotMovedToTheSpeaker)
{
    rig().plug(u"desk"_s);
    rig().sound(u"desk"_s, Before);
    rig().sound(u"speaker"_s, Speaker);
    Recording recording;
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
    rig().plug(u"desk"_s);
    rig().sound(u"desk"_s, Before);
    Recording recording;
    AudioInput input(rig().devices(), rig().engines());
    input.start(u"system"_s, recording.consumer());
    EXPECT_TRUE(recording.awaitTone(Before));
    rig().endServer();
    EXPECT_TRUE(eventually([&] { return input.stats().restarts > 0; }));
    EXPECT_FALSE(rig().devices().availability().isAvailable());
    {
        Recording nothing;
        AudioInput second(rig().devices(), rig().engines());
        EXPECT_EQ(failureOf(second, nothing), VeskError::Case::noMicrophone);
    }
    rig().startServer();
    rig().sound(u"desk"_s, After);
    EXPECT_TRUE(recording.awaitTone(After));
    EXPECT_GE(recording.strongest(Before), 0.48) << "what was said before is kept";
    EXPECT_TRUE(rig().devices().availability().isAvailable());
}

TEST_P(SoundContract, aServerThatHangsIsNotWaitedForWithoutEndAndRecordsAgainWhenItRecovers)
{
    using Clock = std::chrono::steady_clock;
    rig().plug(u"desk"_s);
    rig().sound(u"desk"_s, Before);
    EXPECT_TRUE(eventually([&] { return !names(rig().devices()).isEmpty(); }));
    Recording recording;
    AudioInput input(rig().devices(), rig().engines());
    input.start(u"system"_s, recording.consumer());
    EXPECT_TRUE(recording.awaitTone(Before));
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
