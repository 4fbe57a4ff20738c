// Files that hold no sound for us: what the person reads, and that no other file is opened for them.

#include "Foundation/Descriptor.h"
#include "Platform/SoundFixtures.h"

#include <QDir>
#include <QtEndian>

#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vesk {

namespace {

using namespace test;

class AudioFilesRefusalTest : public SoundFixtures {};

TEST_F(AudioFilesRefusalTest, theSentenceSaysWhatIsWrong)
{
    ASSERT_TRUE(QDir(path(u"."_s)).mkdir(u"Music"_s));
    ASSERT_EQ(::mkfifo(path(u"pipe.wav"_s).toLocal8Bit().constData(), 0600), 0);
    write(u"empty.wav"_s, {});
    write(u"letter.wav"_s, "Dear Sir or Madam,\n\nthis is no sound.\n");
    write(u"picture.mp3"_s,
          QByteArray::fromHex("89504E470D0A1A0A0000000D49484452").append(QByteArray(500, 'x')));
    ASSERT_NO_FATAL_FAILURE(makeTones(u"whole.m4a"_s));
    write(u"broken off.m4a"_s, content(u"whole.m4a"_s).chopped(3'000));
    ASSERT_NO_FATAL_FAILURE(
        ffmpeg({u"-f"_s, u"lavfi"_s, u"-i"_s, u"testsrc=d=1:s=160x120"_s}, u"silent film.mp4"_s));
    ASSERT_NO_FATAL_FAILURE(makeTones(u"bought.m4a"_s,
                                      u"-encryption_scheme cenc-aes-ctr"
                                      " -encryption_key 76a6c65c5ea762046bd749a2e632ccbb"
                                      " -encryption_kid a7e61c373e219033c21091fa607bf3b8"_s));
    ASSERT_NO_FATAL_FAILURE(makeTones(u"future.wav"_s));
    QByteArray future = content(u"future.wav"_s);
    future.replace(future.indexOf("fmt ") + 8, 2, "\xEE\x7E");
    write(u"future.wav"_s, future);
    ASSERT_NO_FATAL_FAILURE(makeTones(u"nothing.wav"_s, {}, 1));
    QByteArray nothing = content(u"nothing.wav"_s);
    write(u"nothing.wav"_s, nothing.first(nothing.indexOf("data") + 4) + QByteArray(4, '\0'));

    for (const auto &[file, sentence] : {
             std::pair{"50%1 missing.wav", "There is no file 50%1 missing.wav"},
             std::pair{"Music", "Music is a folder, not a sound file"},
             std::pair{"pipe.wav", "pipe.wav is a pipe or a device, not a sound file"},
             std::pair{"empty.wav", "empty.wav is empty"},
             std::pair{"letter.wav", "letter.wav is not a sound file of a kind that can be read"},
             std::pair{"picture.mp3", "picture.mp3 is not a sound file of a kind that can be read"},
             std::pair{
                 "broken off.m4a",
                 "broken off.m4a is incomplete: its index is missing, as after an interrupted recording"},
             std::pair{"silent film.mp4", "silent film.mp4 has no sound in it"},
             std::pair{"nothing.wav", "nothing.wav has no sound in it"},
             std::pair{"bought.m4a", "bought.m4a is copy-protected, so its sound cannot be read"},
             std::pair{"future.wav", "The sound in future.wav is of a kind that cannot be read"},
             std::pair{"letter.wav/x.wav", "x.wav cannot be opened: Not a directory"},
         }) {
        EXPECT_EQ(refusal(QString::fromLatin1(file)), sentence);
    }
    EXPECT_EQ(refusal(u"../../../../../../../../dev/zero"_s), "zero is a pipe or a device, not a sound file");
}

/// Another file, which ours would have opened.
class AudioFilesReferenceTest : public AudioFilesRefusalTest {
protected:
    void watch(const QString &name)
    {
        EXPECT_GE(::inotify_add_watch(m_watch.number(), path(name).toLocal8Bit().constData(), IN_OPEN), 0);
    }

    /// Whether any program did, since the last call.
    bool wasOpened() const
    {
        bool any = false;
        char events[4'096];
        while (::read(m_watch.number(), events, sizeof events) > 0) {
            any = true;
        }
        return any;
    }

    /// The `ffmpeg` program, told to trust the file, follows it to the other one: only then does the file
    /// tempt the reader under test.
    void expectTemptation(const QString &name, const QString &options) const
    {
        QProcess program;
        program.start(u"ffmpeg"_s,
                      QStringList{u"-nostdin"_s} + options.split(u' ')
                          + QStringList{u"-i"_s, u"file:"_s + path(name), u"-f"_s, u"null"_s, u"-"_s});
        EXPECT_TRUE(program.waitForFinished(60'000));
        ASSERT_TRUE(wasOpened());
    }

private:
    Descriptor m_watch{::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)};
};

TEST_F(AudioFilesReferenceTest, textsThatNameAnotherFileAreRefusedAndTheOtherStaysClosed)
{
    ASSERT_NO_FATAL_FAILURE(makeTones(u"secret.ts"_s));
    watch(u"secret.ts"_s);
    const QByteArray secret = path(u"secret.ts"_s).toUtf8();
    // What makes the `ffmpeg` program trust it, and its content.
    const std::pair<QString, QByteArray> rows[] = {
        {u"-f hls -protocol_whitelist file -allowed_extensions ALL"_s,
         "#EXTM3U\n#EXT-X-TARGETDURATION:3\n#EXTINF:3,\n" + secret + "\n#EXT-X-ENDLIST\n"},
        {u"-f concat -protocol_whitelist file -safe 0"_s, "ffconcat version 1.0\nfile '" + secret + "'\n"},
    };
    for (const auto &[options, words] : rows) {
        SCOPED_TRACE(options.toStdString());
        write(u"x.wav"_s, words);
        ASSERT_NO_FATAL_FAILURE(expectTemptation(u"x.wav"_s, options));
        EXPECT_EQ(refusal(u"x.wav"_s), "x.wav is not a sound file of a kind that can be read");
        EXPECT_FALSE(wasOpened());
    }
}

/// A QuickTime file whose sound lies in another file, which it names by an alias record.
QByteArray withSoundElsewhere(QByteArray movie, const QByteArray &elsewhere)
{
    QByteArray alias(150, '\0'); // volume, file name and the like: not needed beside the whole path
    const auto number = [](quint32 value, int bytes) {
        QByteArray big(4, '\0');
        qToBigEndian(value, big.data());
        return big.last(bytes);
    };
    alias += number(2, 2) + number(static_cast<quint32>(elsewhere.size()), 2) + elsewhere
        + QByteArray(elsewhere.size() % 2, '\0') + number(0xFFFF, 2) + number(0, 2);
    const QByteArray entry =
        number(static_cast<quint32>(alias.size()) + 12, 4) + "alis" + number(0, 4) + alias;
    // The entry stands behind the box's size, name, version and count, in place of one of 12 bytes.
    const qsizetype references = movie.indexOf("dref") - 4;
    movie.replace(references + 16, 12, entry);
    qsizetype inside = references + 8;
    for (const char *box : {"dref", "dinf", "minf", "mdia", "trak", "moov"}) {
        const qsizetype at = movie.lastIndexOf(box, inside) - 4;
        const auto size = static_cast<quint32>(movie.mid(at, 4).toHex().toUInt(nullptr, 16));
        movie.replace(at, 4, number(size + static_cast<quint32>(entry.size()) - 12, 4));
        inside = at;
    }
    return movie;
}

TEST_F(AudioFilesReferenceTest, aMovieWhoseSoundLiesElsewhereIsRefusedAndTheOtherStaysClosed)
{
    ASSERT_NO_FATAL_FAILURE(makeTones(u"secret.mov"_s, u"-c:a pcm_s16le"_s));
    write(u"x.mov"_s, withSoundElsewhere(content(u"secret.mov"_s), path(u"secret.mov"_s).toUtf8()));
    watch(u"secret.mov"_s);
    ASSERT_NO_FATAL_FAILURE(expectTemptation(u"x.mov"_s, u"-enable_drefs 1 -use_absolute_path 1"_s));
    EXPECT_EQ(refusal(u"x.mov"_s), "x.mov has no sound in it");
    EXPECT_FALSE(wasOpened());
}

} // namespace

} // namespace vesk
