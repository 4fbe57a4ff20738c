// What is recorded for upload: a file that any server reads, and one that survives what happens to a program.

#include "Platform/SoundFixtures.h"
#include "Support/TemporaryHome.h"

#include <QFileInfo>

#include <csignal>
#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

namespace vesk::test {

namespace {

constexpr AudioFileSettings Settings = {{16000, 1}, 32000};

class AudioFilesWritingTest : public SoundFixtures {
protected:
    /// The tone in blocks as they come from a resampler.
    static void writeTone(AudioFileWriter &writer, double seconds)
    {
        const auto frames = static_cast<qsizetype>(seconds * Settings.format.sampleRate);
        const AudioBlock whole = tone(Settings.format, 500, frames);
        constexpr qsizetype BlockFrames = 683;
        for (qsizetype at = 0; at < frames; at += BlockFrames) {
            writer.write(part(whole, at, BlockFrames));
        }
    }

    /// What ffprobe, which no one here wrote, says of a file.
    QString probed(const QString &name) const
    {
        QProcess program;
        program.start(u"ffprobe"_s,
                      {u"-v"_s, u"error"_s, u"-show_entries"_s,
                       u"stream=codec_name,profile,sample_rate,channels:format=format_name,duration"_s,
                       u"-of"_s, u"csv=p=0"_s, path(name)});
        EXPECT_TRUE(program.waitForFinished());
        EXPECT_EQ(program.readAllStandardError().toStdString(), "");
        return QString::fromUtf8(program.readAllStandardOutput()).simplified();
    }

    void expectTone(const QString &name, double least, double most)
    {
        const ReadSound sound = read(name);
        EXPECT_EQ(sound.sound.format, Settings.format);
        EXPECT_GE(sound.seconds(), least);
        EXPECT_LE(sound.seconds(), most);
        EXPECT_EQ(text(sound.shortfall), "");
        const AudioBlock middle = part(sound.sound, 2000, sound.sound.frames() - 4000);
        EXPECT_NEAR(amplitudeAt(middle, 500), 0.5, 0.05);
        // The last half second sounds as well: nothing is silence that stands in for what is missing.
        EXPECT_NEAR(amplitudeAt(part(sound.sound, sound.sound.frames() - 8000, 6000), 500), 0.5, 0.05);
    }
};

} // namespace

TEST_F(AudioFilesWritingTest, aClosedFileIsOrdinaryAndNobodyElsesBusiness)
{
    const auto writer = m_files.openForWriting(path(u"a.m4a"_s), Settings);
    EXPECT_EQ(writer->processingFormat(), Settings.format);
    EXPECT_EQ(modeOf(path(u"a.m4a"_s)), 0600);
    writeTone(*writer, 3);
    writer->close();
    EXPECT_EQ(modeOf(path(u"a.m4a"_s)), 0600);
    expectTone(u"a.m4a"_s, 2.95, 3.1);
    const QStringList probe = probed(u"a.m4a"_s).split(u' ');
    ASSERT_EQ(probe.size(), 2);
    EXPECT_EQ(probe[0], u"aac,LC,16000,1"_s);
    EXPECT_TRUE(probe[1].startsWith(u"\"mov,mp4,m4a"_s)) << probe[1].toStdString();
    EXPECT_NEAR(probe[1].section(u',', -1).toDouble(), 3, 0.07);
    const QByteArray bytes = content(u"a.m4a"_s);
    EXPECT_EQ(bytes.indexOf("moof"), -1);
    EXPECT_LT(bytes.indexOf("moov"), bytes.indexOf("mdat")) << "readable from a pipe";
    EXPECT_LT(bytes.size(), 3 * 4000 + 4500);
    EXPECT_EQ(QDir(QFileInfo(path(u"a.m4a"_s)).path()).entryList(QDir::Files).size(), 1)
        << "nothing beside it";
}

TEST_F(AudioFilesWritingTest, veryShortRecordingsCanBeRead)
{
    for (const double seconds : {0.0, 0.001, 0.064, 0.1}) {
        SCOPED_TRACE(seconds);
        const QString name = u"short%1.m4a"_s.arg(seconds);
        const auto writer = m_files.openForWriting(path(name), Settings);
        writeTone(*writer, seconds);
        writer->close();
        EXPECT_TRUE(probed(name).startsWith(u"aac,LC,16000,1"_s));
        if (seconds > 0) {
            EXPECT_NEAR(read(name).seconds(), seconds, 0.07);
        }
    }
}

TEST_F(AudioFilesWritingTest, whatCannotBeMadeIsRefusedWithASentence)
{
    write(u"there.m4a"_s, "somebody's");
    for (const auto &[name, sentence] :
         {std::pair(u"there.m4a"_s, "there.m4a cannot be written: File exists"),
          std::pair(u"no/folder.m4a"_s, "folder.m4a cannot be written: No such file or directory")}) {
        EXPECT_THAT([&] { m_files.openForWriting(path(name), Settings); },
                    testing::Throws<AudioFileError>(
                        testing::Property(&AudioFileError::errorDescription, QString::fromLatin1(sentence))));
    }
    EXPECT_EQ(content(u"there.m4a"_s), "somebody's");
}

TEST_F(AudioFilesWritingTest, aKilledProgramLeavesAFileThatPlaysToItsLastSecond)
{
    constexpr double Recorded = 7.3;
    std::array<int, 2> pipe = {};
    ASSERT_EQ(::pipe(pipe.data()), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        const auto writer = m_files.openForWriting(path(u"killed.m4a"_s), Settings);
        writeTone(*writer, Recorded);
        std::ignore = ::write(pipe[1], "x", 1);
        ::pause(); // in mid-sentence
        ::_exit(0);
    }
    char sign = 0;
    ASSERT_EQ(::read(pipe[0], &sign, 1), 1);
    ::kill(child, SIGKILL);
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status));
    ::close(pipe[0]);
    ::close(pipe[1]);
    expectTone(u"killed.m4a"_s, Recorded - 1, Recorded + 0.1);
    EXPECT_TRUE(probed(u"killed.m4a"_s).startsWith(u"aac,LC,16000,1"_s));
}

TEST_F(AudioFilesWritingTest, aFullDiskEndsTheRecordingAndKeepsWhatWasWritten)
{
    const auto writer = m_files.openForWriting(path(u"full.m4a"_s), Settings);
    int refusals = 0;
    auto disk = std::make_optional<FullDisk>(20'000);
    for (int second = 0; second < 10; ++second) {
        try {
            writeTone(*writer, 1);
        } catch (const AudioFileError &error) {
            EXPECT_EQ(text(error.errorDescription()), "full.m4a cannot be written: File too large");
            ++refusals;
        }
    }
    EXPECT_THROW(writer->close(), AudioFileError);
    disk.reset();
    EXPECT_GE(refusals, 4);
    const ReadSound sound = read(u"full.m4a"_s);
    EXPECT_GE(sound.seconds(), 3);
    EXPECT_NEAR(amplitudeAt(part(sound.sound, 2000, sound.sound.frames() - 4000), 500), 0.5, 0.05);
}

} // namespace vesk::test
