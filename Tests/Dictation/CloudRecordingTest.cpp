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

/// A disk that is full after some blocks.
class FailingFiles final : public AudioFiles {
public:
    class Writer final : public AudioFileWriter {
    public:
        explicit Writer(int &blocks)
            : m_blocks(blocks)
        {
        }
        const AudioFormat &processingFormat() const override { return CloudRecording::settings.format; }
        void write(const AudioBlock &) override
        {
            if (++m_blocks > 3) {
                throw AudioFileError(u"No space left"_s);
            }
        }
        void close() override { throw AudioFileError(u"Still no space left"_s); }

    private:
        int &m_blocks;
    };

    std::unique_ptr<AudioFileReader> openForReading(const QString &) override { return nullptr; }
    std::unique_ptr<AudioFileWriter> openForWriting(const QString &, const AudioFileSettings &) override
    {
        return std::make_unique<Writer>(blocks);
    }

    int blocks = 0;
};

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

    static void start(CloudRecording &recording, CloudRecording::Level level = {})
    {
        recording.start(u"auto"_s, std::move(level));
        awaitSetup(recording);
    }

    CloudRecording::Services services(AudioFiles &written)
    {
        return {written, converters, sound.devices(), sound.engines()};
    }

    static QStringList recordings() { return QDir(testHome()).entryList({u"vesk-*"_s}, QDir::Files); }

    FakeSound sound{FakeSound::Source::test};
    FfmpegAudioConverters converters;
    FfmpegAudioFiles files;
};

} // namespace

TEST_F(CloudRecordingTest, theMicrophoneIsInTheFileAndNobodyElseMayReadIt)
{
    CloudRecording recording(services(files));
    std::vector<float> levels;
    start(recording, [&](float loudness) { levels.push_back(loudness); });
    EXPECT_EQ(modeOf(recording.url()), 0600);
    const AudioBlock spoken = tone({48000, 2}, 500, 96000);
    for (qsizetype at = 0; at < spoken.frames(); at += 2048) {
        sound.deliver(part(spoken, at, 2048));
    }
    const QString url = awaited(recording.finish());
    EXPECT_EQ(url, recording.url());
    EXPECT_EQ(sound.recordings(), 0);
    EXPECT_EQ(levels.size(), 47U);
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

TEST_F(CloudRecordingTest, eachHasItsOwnFileWhichIsValidEvenWhenNothingWasSaid)
{
    CloudRecording one(services(files));
    CloudRecording other(services(files));
    EXPECT_NE(one.url(), other.url());
    EXPECT_EQ(QFileInfo(one.url()).path(), testHome());
    EXPECT_EQ(recordings(), QStringList()) << "nothing is recorded yet";
    start(one);
    EXPECT_GT(files.openForReading(awaited(one.finish()))->format().sampleRate, 0);
}

TEST_F(CloudRecordingTest, cancelledAndDroppedAndNeverBegunRecordingsLeaveNoFile)
{
    {
        CloudRecording cancelled(services(files));
        start(cancelled);
        EXPECT_EQ(recordings().size(), 1);
        sound.deliver(tone({48000, 2}, 500, 2048));
        cancelled.cancel();
        cancelled.cancel();
    }
    {
        CloudRecording dropped(services(files));
        start(dropped);
    }
    EXPECT_TRUE(eventually([this] { return sound.recordings() == 0; }));
    sound.unplug(u"microphone"_s);
    CloudRecording begun(services(files));
    begun.start(u"auto"_s, {});
    EXPECT_THROW(awaited(begun.finish()), VeskError);
    EXPECT_EQ(recordings(), QStringList());
}

TEST_F(CloudRecordingTest, aFullDiskIsLoggedOnceAndTheRecordingGoesOn)
{
    QDir().mkpath(QFileInfo(Log::file()).path());
    FailingFiles disk;
    CloudRecording recording(services(disk));
    start(recording);
    for (int i = 0; i < 10; ++i) {
        sound.deliver(tone({48000, 2}, 500, 2048));
    }
    EXPECT_EQ(disk.blocks, 10);
    EXPECT_EQ(awaited(recording.finish()), recording.url());
    const QByteArray log = logText();
    EXPECT_EQ(log.count("recording is incomplete"), 1);
    EXPECT_EQ(log.count("recording is incomplete: No space left\n"), 1);
}

} // namespace vesk
