// Files that hold no sound for us: what the person reads, and that no other file is opened for them.

#include "Platform/SoundFixtures.h"

#include <QDir>

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
    write(u"letter.mp3"_s, QByteArray("words, words, words\n").repeated(10'000));
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
             std::pair{"missing.wav", "There is no file missing.wav"},
             std::pair{"50%1 missing.wav", "There is no file 50%1 missing.wav"},
             std::pair{"Music", "Music is a folder, not a sound file"},
             std::pair{"pipe.wav", "pipe.wav is a pipe or a device, not a sound file"},
             std::pair{"empty.wav", "empty.wav is empty"},
             std::pair{"letter.wav", "letter.wav is not a sound file of a kind that can be read"},
             std::pair{"letter.mp3", "letter.mp3 is not a sound file of a kind that can be read"},
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

TEST_F(AudioFilesRefusalTest, aFileOfAnotherPersonIsRefusedWithTheSystemsReason)
{
    ASSERT_NO_FATAL_FAILURE(makeTones(u"private.wav"_s));
    const QByteArray folder = path(u"."_s).toLocal8Bit();
    ASSERT_EQ(::chmod(folder.constData(), 0711), 0);
    ASSERT_EQ(::chmod(path(u"private.wav"_s).toLocal8Bit().constData(), 0), 0);
    const bool isRoot = ::geteuid() == 0; // whom no mode keeps out
    if (isRoot) {
        ASSERT_EQ(::seteuid(65'534), 0);
    }
    const std::string sentence = refusal(u"private.wav"_s);
    if (isRoot) {
        ASSERT_EQ(::seteuid(0), 0);
    }
    EXPECT_EQ(sentence, "private.wav cannot be opened: Permission denied");
}

/// Notices when any program opens a file.
class OpeningWatch {
public:
    explicit OpeningWatch(const QString &path)
        : m_descriptor(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC))
    {
        EXPECT_GE(::inotify_add_watch(m_descriptor, path.toLocal8Bit().constData(), IN_OPEN), 0);
    }
    ~OpeningWatch() { ::close(m_descriptor); }
    OpeningWatch(const OpeningWatch &) = delete;
    OpeningWatch &operator=(const OpeningWatch &) = delete;

    /// Since the last call.
    bool wasOpened() const
    {
        bool any = false;
        char events[4'096];
        while (::read(m_descriptor, events, sizeof events) > 0) {
            any = true;
        }
        return any;
    }

private:
    int m_descriptor;
};

class AudioFilesReferenceTest : public AudioFilesRefusalTest {
protected:
    /// Whether the `ffmpeg` program, told to trust the file, follows it to the other one: only then does the
    /// file tempt the reader under test.
    bool isFollowed(const QString &name, const QString &options, const OpeningWatch &watch) const
    {
        QProcess program;
        program.start(u"ffmpeg"_s,
                      QStringList{u"-nostdin"_s} + options.split(u' ')
                          + QStringList{u"-i"_s, u"file:"_s + path(name), u"-f"_s, u"null"_s, u"-"_s});
        EXPECT_TRUE(program.waitForFinished(60'000));
        return watch.wasOpened();
    }
};

TEST_F(AudioFilesReferenceTest, textsThatNameAnotherFileAreRefusedAndTheOtherStaysClosed)
{
    ASSERT_NO_FATAL_FAILURE(makeTones(u"secret.ts"_s));
    const OpeningWatch watch(path(u"secret.ts"_s));
    const QByteArray secret = path(u"secret.ts"_s).toUtf8();
    // What makes the `ffmpeg` program trust it, and its content.
    const std::pair<QString, QByteArray> rows[] = {
        {u"-f hls -protocol_whitelist file -allowed_extensions ALL"_s,
         "#EXTM3U\n#EXT-X-TARGETDURATION:3\n#EXTINF:3,\n" + secret + "\n#EXT-X-ENDLIST\n"},
        {u"-f concat -protocol_whitelist file -safe 0"_s, "ffconcat version 1.0\nfile '" + secret + "'\n"},
        {u"-f dash -protocol_whitelist file"_s,
         "<?xml version=\"1.0\"?><MPD xmlns=\"urn:mpeg:dash:schema:mpd:2011\" type=\"static\""
         " profiles=\"urn:mpeg:dash:profile:isoff-main:2011\" mediaPresentationDuration=\"PT3S\"><Period>"
         "<AdaptationSet mimeType=\"audio/mp2t\"><Representation id=\"1\" bandwidth=\"1\"><BaseURL>"
             + secret + "</BaseURL></Representation></AdaptationSet></Period></MPD>"},
    };
    for (const auto &[options, words] : rows) {
        SCOPED_TRACE(options.toStdString());
        write(u"x.wav"_s, words);
        ASSERT_TRUE(isFollowed(u"x.wav"_s, options, watch));
        EXPECT_EQ(refusal(u"x.wav"_s), "x.wav is not a sound file of a kind that can be read");
        EXPECT_FALSE(watch.wasOpened());
    }
    write(u"x.wav"_s,
          "v=0\no=- 0 0 IN IP4 127.0.0.1\ns=x\nc=IN IP4 127.0.0.1\nt=0 0\nm=audio 5004 RTP/AVP 0\n");
    EXPECT_EQ(refusal(u"x.wav"_s), "x.wav is not a sound file of a kind that can be read");
}

/// A QuickTime file whose sound lies in another file, which it names by an alias record.
QByteArray withSoundElsewhere(QByteArray movie, const QByteArray &elsewhere)
{
    QByteArray alias(150, '\0'); // volume, file name and the like: not needed beside the whole path
    const auto number = [](quint32 value, int bytes) {
        QByteArray big(bytes, '\0');
        for (int i = bytes - 1; i >= 0; --i, value >>= 8) {
            big[i] = static_cast<char>(value & 0xFF);
        }
        return big;
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
    const OpeningWatch watch(path(u"secret.mov"_s));
    ASSERT_TRUE(isFollowed(u"x.mov"_s, u"-enable_drefs 1 -use_absolute_path 1"_s, watch));
    EXPECT_EQ(refusal(u"x.mov"_s), "x.mov has no sound in it");
    EXPECT_FALSE(watch.wasOpened());
}

} // namespace

} // namespace vesk
