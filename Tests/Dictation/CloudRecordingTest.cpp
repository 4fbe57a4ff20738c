#include "Dictation/CloudRecording.h"

#include "Foundation/Files.h"
#include "Foundation/Log.h"
#include "Foundation/VeskError.h"
#include "Platform/Linux/Speech/FfmpegAudioConverter.h"
#include "Platform/Linux/Speech/FfmpegAudioFiles.h"
#include "Support/Await.h"
#include "Support/FakeSound.h"
#include "Support/TemporaryHome.h"
#include "Support/Tones.h"

#include <QDir>
#include <QFileInfo>

#include <gtest/gtest.h>

namespace vesk {

using namespace Qt::StringLiterals;
using namespace test;

namespace {

class CloudRecordingTest : public HomeTest {
protected:
    CloudRecordingTest()
    {
        qputenv("TMPDIR", testHome().toLocal8Bit());
        sound.plug(u"microphone"_s);
    }

    /// What was dropped ends on the event loop and uses the fakes until then.
    ~CloudRecordingTest() override
    {
        eventually([this] { return sound.engineCount() == 0; });
    }

    static void start(CloudRecording &recording)
    {
        recording.start(u"auto"_s, {});
        awaitSetup(recording);
    }

    CloudRecording::Services services() { return {files, converters, sound.devices(), sound.engines()}; }

    static QStringList recordings() { return QDir(testHome()).entryList({u"vesk-*"_s}, QDir::Files); }

    FakeSound sound{FakeSound::Source::test};
    FfmpegAudioConverters converters;
    FfmpegAudioFiles files;
};

} // namespace

TEST_F(CloudRecordingTest, theMicrophoneIsInTheFileAndNobodyElseMayReadIt)
{
    CloudRecording recording(services());
    start(recording);
    EXPECT_EQ(modeOf(recording.url()), 0600);
    const AudioBlock spoken = tone({48000, 2}, 500, 96000);
    for (qsizetype at = 0; at < spoken.frames(); at += 2048) {
        sound.deliver(part(spoken, at, 2048));
    }
    const QString url = awaited(recording.finish());
    EXPECT_EQ(url, recording.url());
    EXPECT_EQ(sound.recordings(), 0);
    EXPECT_EQ(recording.stats().frames, 96000);

    const auto reader = files.openForReading(url);
    EXPECT_EQ(reader->format(), CloudRecording::settings.format);
    AudioBlock heard = {reader->format(), {}};
    while (const auto block = reader->read()) {
        append(heard, *block);
    }
    EXPECT_NEAR(static_cast<double>(heard.frames()) / 16000, 2, 0.1);
    EXPECT_NEAR(amplitudeAt(part(heard, 4000, 24000), 500), 0.5, 0.05);
    CloudRecording::discard(url);
    EXPECT_EQ(recordings(), QStringList());
    CloudRecording::discard(url); // there is nothing more, and nothing to say about it
}

TEST_F(CloudRecordingTest, cancelledDroppedAndNeverBegunRecordingsLeaveNoFile)
{
    auto cancelled = std::make_unique<CloudRecording>(services());
    start(*cancelled);
    EXPECT_EQ(recordings().size(), 1);
    sound.deliver(tone({48000, 2}, 500, 2048));
    cancelled->cancel();
    cancelled.reset();
    auto dropped = std::make_unique<CloudRecording>(services());
    start(*dropped);
    dropped.reset();
    EXPECT_TRUE(eventually([this] { return sound.recordings() == 0; }));
    sound.unplug(u"microphone"_s);
    CloudRecording begun(services());
    begun.start(u"auto"_s, {});
    EXPECT_THROW(awaited(begun.finish()), VeskError);
    EXPECT_TRUE(eventually([] { return recordings().isEmpty(); }));
}

TEST_F(CloudRecordingTest, aFullDiskIsLoggedOnceAndTheRecordingGoesOn)
{
    QDir().mkpath(QFileInfo(Log::file()).path());
    CloudRecording recording(services());
    start(recording);
    auto disk = std::make_optional<FullDisk>(8'000);
    constexpr int Blocks = 200; // some eight seconds
    for (int i = 0; i < Blocks; ++i) {
        sound.deliver(tone({48000, 2}, 500, 2048));
    }
    EXPECT_EQ(recording.stats().frames, Blocks * 2048);
    EXPECT_EQ(awaited(recording.finish()), recording.url());
    disk.reset();
    const QByteArray log = logText();
    EXPECT_EQ(log.count("recording is incomplete"), 1) << log.constData();
    EXPECT_TRUE(log.contains(" cannot be written: File too large\n")) << log.constData();
}

} // namespace vesk
