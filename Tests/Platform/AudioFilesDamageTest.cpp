// Sound files that are not whole: what is there is heard, and the person learns that it is not all.

#include "Platform/SoundFixtures.h"

#include <gmock/gmock.h>
#include <random>

namespace vesk {

namespace {

using namespace test;
using testing::AnyOf;
using testing::MatchesRegex;

class AudioFilesDamageTest : public SoundFixtures {
protected:
    /// Ten seconds of noisy tones, so that no format can make much of it small.
    void makeSpeech(const QString &name, const QString &options = {})
    {
        ASSERT_NO_FATAL_FAILURE(ffmpeg(
            u"-f lavfi -i aevalsrc=0.5*sin(2*PI*500*t)+0.2*(random(0)-0.5):s=44100:d=10 "_s.append(options)
                .split(u' ', Qt::SkipEmptyParts),
            name));
    }

    void cutInHalf(const QString &name) const
    {
        const QByteArray whole = content(name);
        write(name, whole.first(whole.size() / 2 + 1));
    }
};

TEST_F(AudioFilesDamageTest, aFileCutInHalfIsHeardToItsEndAndSaysSo)
{
    const std::pair<QString, QString> rows[] = {
        {u"telephone.wav"_s, u"-c:a pcm_mulaw"_s},
        {u"a.caf"_s, {}},
        {u"a.flac"_s, {}},
        {u"a.mp3"_s, {}},
        {u"a.m4a"_s, u"-movflags faststart"_s},
        {u"a.mp4"_s, u"-f lavfi -i testsrc=s=160x120:d=10 -movflags faststart"_s},
        {u"a.mkv"_s, u"-f lavfi -i testsrc=s=160x120:d=10"_s}};
    for (const auto &[name, options] : rows) {
        SCOPED_TRACE(name.toStdString());
        ASSERT_NO_FATAL_FAILURE(makeSpeech(name, options));
        EXPECT_EQ(text(read(name).shortfall), "");
        cutInHalf(name);
        const ReadSound result = read(name);
        EXPECT_NEAR(result.seconds(), 5, 0.6);
        EXPECT_NEAR(result.duration.value_or(AudioDuration(0)).count(), 10, 0.1) << "what the file says";
        EXPECT_EQ(text(result.shortfall),
                  text(u"%1 ends early: %2 of 10.0 seconds could be read"_s.arg(
                      name, QString::number(result.seconds(), 'f', 1))));
    }
}

TEST_F(AudioFilesDamageTest, soundWhoseWriterDidNotKnowItsLengthIsWhole)
{
    ASSERT_NO_FATAL_FAILURE(makeSpeech(u"known.wav"_s));
    const QByteArray known = content(u"known.wav"_s);
    const qsizetype size = known.indexOf("data") + 4;
    for (const quint32 unknown : {0U, 0xFFFF'FFFFU, 0x7FFF'FFFFU, 0x8000'0000U, 0x7FFF'F000U}) {
        QByteArray streamed = known;
        streamed.replace(size, 4, reinterpret_cast<const char *>(&unknown), 4);
        write(u"streamed.wav"_s, streamed);
        const ReadSound result = read(u"streamed.wav"_s);
        EXPECT_NEAR(result.seconds(), 10, 0.01) << unknown;
        EXPECT_EQ(result.duration, std::nullopt) << unknown;
        EXPECT_EQ(text(result.shortfall), "") << unknown;
    }
}

TEST_F(AudioFilesDamageTest, aDamagedStretchIsPassedOverAndMentioned)
{
    for (const char *file : {"a.mp3", "a.flac", "a.m4a", "a.aac", "a.ogg", "a.opus", "a.webm", "a.wv"}) {
        SCOPED_TRACE(file);
        const QString name = QString::fromLatin1(file);
        ASSERT_NO_FATAL_FAILURE(makeSpeech(name));
        QByteArray bytes = content(name);
        bytes.replace(bytes.size() / 2, 3'000, QByteArray(3'000, '\0'));
        write(name, bytes);
        const ReadSound result = read(name);
        EXPECT_GT(result.seconds(), 4.5);
        EXPECT_NEAR(amplitudeAt(part(result.sound, result.sound.frames() - 44'100, 44'100), 500), 0.5, 0.1)
            << "the sound behind it is heard";
        EXPECT_THAT(text(result.shortfall),
                    AnyOf(text(name + u" is damaged: some of its sound could not be decoded"),
                          MatchesRegex("a\\.[a-z0-9]+ is damaged: [0-9.]+ of 10.0 seconds could be read")));
    }
}

TEST_F(AudioFilesDamageTest, noDamageCrashesHangsOrFailsOtherwiseThanWithASentence)
{
    std::mt19937 random(20'240'229); // a fixed seed: the same files every time
    for (const char *file : {"a.wav", "a.mp3", "a.m4a", "a.flac", "a.opus", "a.webm", "a.ts", "a.avi"}) {
        const QString name = QString::fromLatin1(file);
        ASSERT_NO_FATAL_FAILURE(makeTones(name, u"-ar 16000"_s, 1));
        const QByteArray whole = content(name);
        int heard = 0;
        for (int i = 0; i < 60; ++i) {
            SCOPED_TRACE(testing::Message() << file << ", change " << i);
            QByteArray mangled = whole;
            // Every other file is changed where lengths and formats stand.
            const qsizetype end = i % 2 == 0 ? 600 : mangled.size();
            for (auto changes = random() % 5 + 1; changes > 0; --changes) {
                mangled[static_cast<qsizetype>(random()) % end] = static_cast<char>(random());
            }
            write(name, mangled);
            try {
                const auto reader = m_files.openForReading(path(name));
                qsizetype blocks = 0;
                while (reader->read()) {
                    ASSERT_LT(++blocks, 10'000) << "a second of sound became endless";
                }
                reader->shortfall();
                ++heard;
            } catch (const AudioFileError &error) {
                ASSERT_THAT(text(error.errorDescription()), testing::HasSubstr(file));
            }
        }
        EXPECT_GT(heard, 5) << file << ": the changes must leave something to decode";
    }
}

} // namespace

} // namespace vesk
