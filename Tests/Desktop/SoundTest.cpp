#include "Desktop/ServerRig.h"
#include "Dictation/AudioInput.h"
#include "Foundation/VeskError.h"
#include "Support/Await.h"
#include "Support/Recording.h"
#include "Support/SoundContract.h"

#include <random>

using namespace Qt::StringLiterals;

namespace vesk::test {

namespace {

SoundRigKind rigKind(const char *name, SoundServer::Kind kind)
{
    return {name, [kind] { return std::make_unique<ServerRig>(kind); }};
}

const auto Rigs = testing::Values(rigKind("PulseAudio", SoundServer::Kind::pulseAudio),
                                  rigKind("PipeWire", SoundServer::Kind::pipeWire));

INSTANTIATE_TEST_SUITE_P(Server, SoundContract, Rigs, testing::PrintToStringParamName());

/// A second of noise, which lies on itself in one place only.
AudioBlock noise()
{
    std::mt19937 random(1); // the same every time
    std::uniform_real_distribution<float> sample(-0.9F, 0.9F);
    AudioBlock block = {{48'000, 1}, std::vector<float>(48'000)};
    std::generate(block.samples.begin(), block.samples.end(), [&] { return sample(random); });
    return block;
}

/// Where in the recording (channel 0) the played sound's first frames lie; -1 when they are not there.
qsizetype position(const AudioBlock &recorded, const AudioBlock &played)
{
    constexpr qsizetype Length = 200; // frames, enough to tell noise from other noise
    for (qsizetype at = 0; at + Length <= recorded.frames(); ++at) {
        double difference = 0;
        for (qsizetype i = 0; i < Length && difference < Length * 0.001; ++i) {
            const float heard =
                recorded.samples.at(static_cast<std::size_t>((at + i) * recorded.format.channels));
            difference +=
                std::abs(static_cast<double>(heard - played.samples.at(static_cast<std::size_t>(i))));
        }
        if (difference < Length * 0.001) {
            return at;
        }
    }
    return -1;
}

/// What only real servers can show.
class SoundServerTest : public testing::TestWithParam<SoundServer::Kind> {};

INSTANTIATE_TEST_SUITE_P(Server, SoundServerTest,
                         testing::Values(SoundServer::Kind::pulseAudio, SoundServer::Kind::pipeWire),
                         [](const auto &kind) {
                             return kind.param == SoundServer::Kind::pulseAudio ? "PulseAudio" : "PipeWire";
                         });

TEST_P(SoundServerTest, everySampleSaidAfterTheStartArrivesUnchangedOnEveryNumberOfChannels)
{
    for (const int channels : {2, 1}) {
        SCOPED_TRACE(channels);
        SoundServer server(GetParam());
        server.addMicrophone({.name = u"desk"_s, .channels = channels});
        PulseSound sound(server.address());
        const QTemporaryDir folder;
        const QString file = folder.filePath(u"noise.wav"_s);
        const AudioBlock played = noise();
        ASSERT_TRUE(writeWav(file, played));

        Recording recording;
        AudioInput input(sound.audioDevices(), sound.audioEngines());
        input.start(u"auto"_s, recording.consumer());
        const auto player = server.play(file, u"desk"_s);
        qsizetype at = -1;
        EXPECT_TRUE(eventually([&] {
            const AudioBlock recorded = recording.sound();
            at = at < 0 ? position(recorded, played) : at;
            return at >= 0 && recorded.frames() >= at + played.frames();
        }));
        input.stop();
        const AudioBlock recorded = recording.sound();
        ASSERT_EQ(recorded.format, (AudioFormat{48'000, channels}));
        ASSERT_GE(at, 0);
        for (qsizetype i = 0; i < played.frames(); ++i) {
            for (int channel = 0; channel < channels; ++channel) {
                const auto index = static_cast<std::size_t>((at + i) * channels + channel);
                ASSERT_NEAR(recorded.samples.at(index), played.samples.at(static_cast<std::size_t>(i)), 0.001)
                    << "frame " << i << ", channel " << channel;
            }
        }
    }
}

TEST_P(SoundServerTest, aMutedMicrophoneIsSilentAndItsStatisticsSaySo)
{
    ServerRig rig(GetParam());
    rig.plug(u"desk"_s);
    rig.sound(u"desk"_s, 500);
    rig.server().control({u"set-source-mute"_s, u"desk"_s, u"1"_s});
    Recording recording;
    AudioInput input(rig.devices(), rig.engines());
    input.start(u"auto"_s, recording.consumer());
    EXPECT_TRUE(recording.awaitFrames(24'000));
    EXPECT_EQ(input.stats().silenceMessage(), u"The microphone (The desk) is very quiet: nothing heard");
    rig.server().control({u"set-source-mute"_s, u"desk"_s, u"0"_s});
    EXPECT_TRUE(recording.awaitTone(500)) << "switched on again in mid-recording";
    EXPECT_EQ(input.stats().restarts, 0);
}

TEST_P(SoundServerTest, aSuspendedMicrophoneLeavesAGapAndIsHeardAgain)
{
    ServerRig rig(GetParam());
    rig.plug(u"desk"_s);
    rig.sound(u"desk"_s, 500);
    Recording recording;
    AudioInput input(rig.devices(), rig.engines());
    input.start(u"auto"_s, recording.consumer());
    ASSERT_TRUE(recording.awaitTone(500));
    rig.server().control({u"suspend-source"_s, u"desk"_s, u"1"_s});
    rig.server().control({u"suspend-source"_s, u"desk"_s, u"0"_s});
    rig.sound(u"desk"_s, 1'300);
    EXPECT_TRUE(recording.awaitTone(1'300));
    EXPECT_GE(recording.strongest(500), 0.48) << "what was said before is kept";
}

TEST_P(SoundServerTest, aStartThatTheServerAnswersTooLateRecordsNothingBehindThePersonsBack)
{
    ServerRig rig(GetParam());
    rig.plug(u"desk"_s);
    EXPECT_TRUE(eventually([&] { return rig.devices().defaultInput().has_value(); }));
    Recording nothing;
    AudioInput late(rig.devices(), rig.engines());
    rig.freezeServer();
    EXPECT_THROW(late.start(u"auto"_s, nothing.consumer()), UserError);
    rig.thawServer();
    Recording recording;
    AudioInput input(rig.devices(), rig.engines());
    input.start(u"auto"_s, recording.consumer()); // the server answers both, the late one first
    EXPECT_TRUE(recording.awaitFrames(4'800));
    EXPECT_TRUE(eventually([&] {
        return rig.server().control({u"list"_s, u"source-outputs"_s}).count("application.name = \"Vesk\"")
            == 1;
    }));
    EXPECT_EQ(nothing.sound().frames(), 0);
}

TEST(PulseSound, withoutAServerThereIsNoMicrophoneAndTheReasonIsSaid)
{
    const PulseSound sound("unix:/nonexistent/native");
    EXPECT_EQ(sound.audioDevices().availability().reason(), u"No sound server is running");
    EXPECT_EQ(sound.audioDevices().defaultInput(), std::nullopt);
    EXPECT_TRUE(sound.audioDevices().inputDevices().empty());
}

TEST(PulseSound, aServerThatHangsAtTheLaunchIsWaitedForOnceAndFoundWhenItRecovers)
{
    SoundServer server(SoundServer::Kind::pulseAudio);
    server.addMicrophone({.name = u"desk"_s});
    server.freeze();
    PulseSound sound(server.address());
    const auto launch = std::chrono::steady_clock::now();
    Recording recording;
    AudioInput input(sound.audioDevices(), sound.audioEngines());
    EXPECT_THROW(input.start(u"auto"_s, recording.consumer()), VeskError);
    EXPECT_EQ(sound.audioDevices().availability().reason(), u"The sound server does not answer");
    EXPECT_LT(std::chrono::steady_clock::now() - launch, 2 * PulseConnection::AnswerLimit);
    server.thaw();
    EXPECT_TRUE(eventually([&] { return sound.audioDevices().availability().isAvailable(); }));
    input.start(u"auto"_s, recording.consumer());
    EXPECT_TRUE(recording.awaitFrames(4'800));
}

TEST(PulseSound, aServerThatTakesNobodyDeniesTheMicrophone)
{
    SoundServer server(SoundServer::Kind::pulseAudio);
    server.addMicrophone({.name = u"desk"_s});
    PulseSound sound(server.refusingAddress());
    EXPECT_EQ(sound.audioDevices().availability().reason(), u"Vesk has no access to the microphone");
    Recording recording;
    AudioInput input(sound.audioDevices(), sound.audioEngines());
    try {
        input.start(u"auto"_s, recording.consumer());
        FAIL() << "nobody may record there";
    } catch (const VeskError &error) {
        EXPECT_EQ(error.errorCase(), VeskError::Case::microphoneDenied);
    }
}

} // namespace

} // namespace vesk::test
