// What comes out of sound files of many kinds.

#include "Platform/SoundFixtures.h"

#include <unistd.h>

namespace vesk {

namespace {

using namespace test;

class AudioFilesTest : public SoundFixtures {};

struct Kind {
    const char *file;
    const char *options;
    AudioFormat format = {44'100, 2};
    bool saysItsLength = true;
    double left = 0.5;
    double right = 0.25;
};

// One for each kind of container, and those in which length or samples are told in another way.
const Kind Kinds[] = {
    {"8 bit unsigned.wav", "-c:a pcm_u8"},
    {"24 bit.wav", "-c:a pcm_s24le"},
    {"double.wav", "-c:a pcm_f64le"},
    {"big.wav", "-rf64 always"},
    {"telephone.wav", "-c:a pcm_mulaw -ar 8000 -ac 1", {8'000, 1}, true, 0.25},
    {"dictaphone.wav", "-c:a adpcm_ima_wav"},
    {"studio.wav", "-c:a pcm_s24le -ar 192000 -af pan=7.1|c0=c0|c1=c1|c7=c0", {192'000, 8}},
    {"sony.w64", "", {44'100, 2}, false},
    {"mac.aiff", ""},
    {"mac.caf", ""},
    {"sun.au", ""},
    {"phone.m4a", ""},
    {"streamed.m4a", "-movflags frag_keyframe+empty_moov"},
    {"music.mp3", ""},
    {"without index.mp3", "-write_xing 0", {44'100, 2}, false},
    {"music.flac", "-sample_fmt s32"},
    {"message.ogg", "-c:a libopus", {48'000, 2}},
    {"music.mka", "-c:a flac"},
    {"bare.aac", "", {44'100, 2}, false},
    {"dolby.ac3", "", {44'100, 2}, false},
    {"windows.wma", ""},
    {"music.wv", ""},
    {"music.tta", ""},
};

TEST_F(AudioFilesTest, everyKindIsReadAtItsOwnRateAndChannelCountWithItsContent)
{
    for (const Kind &kind : Kinds) {
        SCOPED_TRACE(kind.file);
        const QString name = QString::fromLatin1(kind.file);
        ASSERT_NO_FATAL_FAILURE(makeTones(name, QString::fromLatin1(kind.options)));
        const ReadSound result = read(name);
        ASSERT_EQ(result.sound.format, kind.format);
        EXPECT_NEAR(result.seconds(), 3, 0.1);
        EXPECT_GE(result.smallestBlock, 1'024);
        EXPECT_NEAR(decibels(amplitudeAt(result.sound, 500, 0) / kind.left), 0, 0.5);
        if (kind.format.channels > 1) {
            EXPECT_NEAR(decibels(amplitudeAt(result.sound, 800, 1) / kind.right), 0, 0.5);
            EXPECT_LT(amplitudeAt(result.sound, 500, 1), 0.01) << "channels stay apart";
        }
        EXPECT_EQ(result.duration.has_value(), kind.saysItsLength);
        EXPECT_NEAR(result.duration.value_or(AudioDuration(3)).count(), 3, 0.1);
        EXPECT_EQ(text(result.shortfall), "");
    }
}

TEST_F(AudioFilesTest, ofAVideoTheSoundIsRead)
{
    for (const char *file :
         {"a.mp4", "a.mov", "a.mkv", "a.webm", "a.avi", "a.ts", "a.mpg", "a.flv", "a.wmv"}) {
        SCOPED_TRACE(file);
        const QString name = QString::fromLatin1(file);
        // The pictures outlast the sound, as they do in most videos.
        ASSERT_NO_FATAL_FAILURE(makeTones(name, u"-f lavfi -i testsrc=s=160x120:d=5"_s));
        const ReadSound result = read(name);
        EXPECT_NEAR(result.seconds(), 3, 0.1);
        EXPECT_NEAR(decibels(amplitudeAt(result.sound, 500, 0) / 0.5), 0, 0.5);
        EXPECT_EQ(text(result.shortfall), "");
    }
}

TEST_F(AudioFilesTest, aTitlePictureOfMegabytesIsPassedOver)
{
    ASSERT_NO_FATAL_FAILURE(
        ffmpeg({u"-f"_s, u"lavfi"_s, u"-i"_s, u"nullsrc=s=1200x1000,geq=random(1)*255:128:128"_s,
                u"-frames:v"_s, u"1"_s},
               u"cover.png"_s));
    ASSERT_GT(content(u"cover.png"_s).size(), 1'100'000);
    ASSERT_NO_FATAL_FAILURE(makeTones(
        u"song.mp3"_s,
        u"-i %1 -map 0 -map 1 -c:v copy -disposition:v:0 attached_pic"_s.arg(path(u"cover.png"_s))));
    const ReadSound result = read(u"song.mp3"_s);
    EXPECT_NEAR(result.seconds(), 3, 0.1);
    EXPECT_EQ(text(result.shortfall), "");
}

TEST_F(AudioFilesTest, aNameIsNeverTakenForAnAddressOrAnOption)
{
    ASSERT_NO_FATAL_FAILURE(makeTones(u"plain.wav"_s));
    ASSERT_EQ(::chdir(path(u"."_s).toLocal8Bit().constData()), 0);
    for (const QString &name :
         {u"two words.wav"_s, u"Grüße für Jörg.wav"_s, u"-i.wav"_s, u"50%d%s.wav"_s, u"a:b.wav"_s,
          u"file:c.wav"_s, u"http:example.wav"_s, u"concat:plain.wav|plain.wav"_s, u"x'\"\\.wav"_s,
          u"no ending"_s, u"song.mp3"_s}) {
        SCOPED_TRACE(name.toStdString());
        ASSERT_TRUE(QFile::copy(u"plain.wav"_s, name));
        const auto reader = m_files.openForReading(name);
        EXPECT_NEAR(reader->duration().value_or(AudioDuration(0)).count(), 3, 0.01);
    }
    ASSERT_EQ(::chdir("/"), 0);
}

TEST_F(AudioFilesTest, whatIsNotANumberBecomesSilence)
{
    ASSERT_NO_FATAL_FAILURE(makeTones(u"float.wav"_s, u"-c:a pcm_f32le"_s));
    QByteArray bytes = content(u"float.wav"_s);
    const qsizetype data = bytes.indexOf("data") + 8;
    const float nonsense[] = {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(),
                              -std::numeric_limits<float>::infinity(), std::numeric_limits<float>::max(), 7};
    bytes.replace(data + 4'000, sizeof nonsense, reinterpret_cast<const char *>(nonsense), sizeof nonsense);
    write(u"float.wav"_s, bytes);
    const ReadSound result = read(u"float.wav"_s);
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(result.sound.samples[1'000 + i], 0);
    }
    EXPECT_EQ(result.sound.samples[1'004], 7) << "too loud is still sound";
    EXPECT_EQ(peak(result.sound), 7);
}

TEST_F(AudioFilesTest, soundThatChangesItsFormatMidwayIsConvertedToTheFirst)
{
    ASSERT_NO_FATAL_FAILURE(makeTones(u"first.mp3"_s, u"-write_xing 0 -id3v2_version 0"_s));
    ASSERT_NO_FATAL_FAILURE(makeTones(
        u"second.mp3"_s, u"-write_xing 0 -id3v2_version 0 -ar 22050 -af pan=mono|c0=.5*c0+.5*c1"_s));
    write(u"joined.mp3"_s, content(u"first.mp3"_s) + content(u"second.mp3"_s) + content(u"first.mp3"_s));
    const ReadSound result = read(u"joined.mp3"_s);
    EXPECT_EQ(result.sound.format, (AudioFormat{44'100, 2}));
    EXPECT_NEAR(result.seconds(), 9, 0.3);
    const AudioBlock middle = part(result.sound, 44'100 * 7 / 2, 44'100 * 2);
    for (const int channel : {0, 1}) { // the one channel of the second part holds half of each tone
        EXPECT_NEAR(decibels(amplitudeAt(middle, 500, channel) / 0.25), 0, 0.5);
        EXPECT_NEAR(decibels(amplitudeAt(middle, 800, channel) / 0.125), 0, 0.5);
    }
    const AudioBlock last = part(result.sound, 44'100 * 7, 44'100 * 3 / 2);
    EXPECT_NEAR(decibels(amplitudeAt(last, 500, 0) / 0.5), 0, 0.5);
}

} // namespace

} // namespace vesk
