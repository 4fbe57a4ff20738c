#include "Dictation/AudioInput.h"

#include "Dictation/Microphone.h"
#include "Foundation/VeskError.h"
#include "Support/Await.h"
#include "Support/FakeSound.h"
#include "Support/Recording.h"
#include "Support/SoundContract.h"

#include <limits>

using namespace Qt::StringLiterals;

namespace vesk {

namespace test {

INSTANTIATE_TEST_SUITE_P(Fake, SoundContract,
                         testing::Values(SoundRigKind{
                             "fake", [] { return std::make_unique<FakeSound>(FakeSound::Source::tones); }}),
                         testing::PrintToStringParamName());

} // namespace test

namespace {

using namespace test;

constexpr AudioFormat Stereo = {48'000, 2};

AudioBlock steady(float left, float right, qsizetype frames = 480)
{
    AudioBlock block = {Stereo, {}};
    for (qsizetype i = 0; i < frames; ++i) {
        append(block, {Stereo, {left, right}});
    }
    return block;
}

/// One microphone whose every block the test makes.
class AudioInputTest : public testing::Test {
protected:
    AudioInputTest() { sound.plug(u"desk"_s); }

    FakeSound sound{FakeSound::Source::test};
    Recording recording;
    AudioInput input{sound, sound};
};

TEST(AudioInput, loudnessIsLinearInDecibelsOfTheFirstChannel)
{
    const std::vector<std::pair<AudioBlock, float>> rows = {
        {steady(1, 0), 1},
        {steady(-1, 0), 1},
        {steady(0, 1), 0},
        {steady(0.001F, 1), 0},
        {steady(0.0316F, 0), 0.444F},
        {steady(0.5623F, 0), 1}, // -5 dBFS
        {steady(1e30F, 0), 1},
        {{Stereo, {}}, 0},
        {{{}, {1, 1}}, 0},
    };
    for (const auto &[block, expected] : rows) {
        EXPECT_NEAR(AudioInput::loudness(block), expected, 0.001F) << testing::PrintToString(block.samples);
    }
}

TEST(AudioStats, saysWhatTheMicrophoneWasLike)
{
    EXPECT_EQ(AudioStats().summary(), u"device=\"?\" frames=0 peak=0.00 restarts=0");
    const AudioStats loud = {u"Desk \"2\""_s, 5'000'000'000, 0.996F, 3};
    EXPECT_EQ(loud.summary(), u"device=\"Desk \"2\"\" frames=5000000000 peak=1.00 restarts=3");
    const std::pair<AudioStats, QString> rows[] = {
        {{u"Desk"_s, 0, 0.9F, 0}, u"The microphone (Desk) sent no sound"_s},
        {{u"Desk"_s, 1, 0.149F, 0}, u"The microphone (Desk) is very quiet: nothing heard"_s},
        {{u"Desk"_s, 1, 0.15F, 0}, u"No words recognized"_s}};
    for (const auto &[stats, message] : rows) {
        EXPECT_EQ(stats.silenceMessage(), message);
    }
}

TEST(Microphone, autoChoosesTheComputersOwnOnlyInsteadOfABluetoothDefault)
{
    using enum AudioTransport;
    // The first is the default; nothing expected is the system's default.
    const std::tuple<QString, std::vector<AudioTransport>, std::optional<std::size_t>> rows[] = {
        {u"auto"_s, {bluetooth, other, builtIn, builtIn}, 2},
        {u"auto"_s, {bluetoothLowEnergy, builtIn}, 1},
        {u"auto"_s, {bluetooth, other}, {}},
        {u"auto"_s, {other, builtIn}, {}},
        {u"auto"_s, {builtIn, bluetooth}, {}},
        {u"auto"_s, {}, {}},
        {u"system"_s, {bluetooth, builtIn}, {}},
        {u""_s, {bluetooth, builtIn}, {}},
    };
    for (const auto &[mode, transports, expected] : rows) {
        FakeSound sound(FakeSound::Source::test);
        for (const AudioTransport transport : transports) {
            sound.plug(QString::number(sound.inputDevices().size()), transport);
        }
        const auto preferred = Microphone::preferred(mode, sound);
        EXPECT_EQ(preferred, expected ? std::optional(sound.inputDevices().at(*expected)) : std::nullopt)
            << mode.toStdString() << " of " << transports.size();
    }
}

TEST_F(AudioInputTest, countsFramesThePeakAndTheFirstSample)
{
    input.start(u"auto"_s, recording.consumer());
    const AudioEngine::CaptureTime first(std::chrono::hours(5));
    sound.deliver({Stereo, {}}, first - std::chrono::hours(1));
    EXPECT_EQ(input.firstSample(), std::nullopt);
    sound.deliver(steady(0.0316F, 0), first);
    EXPECT_NEAR(recording.loudness(), 0.444F, 0.001F);
    sound.deliver(steady(0.001F, 0), first + std::chrono::milliseconds(10));
    EXPECT_EQ(recording.loudness(), 0);
    input.stop();
    sound.deliver(steady(1, 1), first + std::chrono::milliseconds(20));
    EXPECT_EQ(input.stats().summary(), u"device=\"The desk\" frames=960 peak=0.44 restarts=0");
    EXPECT_EQ(input.firstSample(), first);
    EXPECT_EQ(sound.recordings(), 0);
}

TEST_F(AudioInputTest, whatIsNoNumberReachesTheConsumerAsSilence)
{
    input.start(u"auto"_s, recording.consumer());
    for (const float bad :
         {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity()}) {
        for (AudioBlock block : {steady(0.5F, bad, 1), steady(bad, 0.5F, 1)}) {
            append(block, steady(0.5F, 0.5F));
            sound.deliver(block);
        }
    }
    EXPECT_EQ(recording.sound().samples, std::vector<float>(4UL * 2 * 481, 0.0F));
    EXPECT_EQ(input.stats().frames, 4 * 481);
    EXPECT_EQ(input.stats().peak, 0);
    sound.deliver(steady(1, 1));
    EXPECT_EQ(recording.loudness(), 1);
}

TEST_F(AudioInputTest, aStartThatFailsLeavesNothingRecording)
{
    sound.setFormat({48'000, 0}); // a driver that knows none yet
    EXPECT_THROW(input.start(u"system"_s, recording.consumer()), VeskError);
    sound.setFormat(Stereo);
    sound.reportChange();
    EXPECT_EQ(sound.recordings(), 0);
    EXPECT_EQ(input.stats().restarts, 0);
}

TEST_F(AudioInputTest, aChangeAttachesAgainInTheFormatOfThatMoment)
{
    input.start(u"system"_s, recording.consumer());
    sound.deliver(steady(0.5F, 0.5F));
    sound.setFormat({16'000, 1});
    sound.reportChange();
    EXPECT_TRUE(eventually([this] { return input.stats().restarts == 1 && sound.recordings() == 1; }));
    sound.deliver({{16'000, 1}, std::vector<float>(160, 0.5F)});
    EXPECT_EQ(input.stats().frames, 480 + 160);
    EXPECT_EQ(recording.sound().format, (AudioFormat{16'000, 1}));
}

TEST_F(AudioInputTest, changesAroundTheStopAttachNothing)
{
    for (int i = 0; i < 100; ++i) {
        input.start(u"system"_s, recording.consumer());
        std::thread changes([this] { sound.reportChange(); });
        input.stop();
        changes.join();
        sound.reportChange();
        EXPECT_EQ(sound.recordings(), 0);
    }
}

} // namespace

} // namespace vesk
