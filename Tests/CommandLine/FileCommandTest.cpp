#include "CommandLine/ProgramRun.h"
#include "Foundation/Config.h"
#include "Foundation/Files.h"
#include "Support/TemporaryHome.h"

#include <QFile>
#include <QRegularExpression>

#include <gmock/gmock.h>

namespace vesk {

using namespace Qt::StringLiterals;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

namespace {

class FileCommandTest : public HomeTest {
protected:
    /// A file made from the sample by FFmpeg's own program.
    static QString converted(QStringView name, const QStringList &options = {})
    {
        runTool(u"ffmpeg"_s,
                QStringList{u"-loglevel"_s, u"error"_s, u"-y"_s, u"-i"_s, sample()} << options << at(name));
        return at(name);
    }

    static QString sample() { return QStringLiteral(VESK_TEST_SPEECH_FOLDER "/sample.wav"); }
    static ProgramRun transcribe(const QString &file) { return runVesk({u"--file"_s, file, u"--raw"_s}); }
};

/// "ever tried ever failed …" of the one line that a transcription prints.
std::string wordsOf(const ProgramRun &run)
{
    static const QRegularExpression form(u"^speech \\d+ ms: (.*)\n$"_s);
    const auto match = form.match(run.output);
    if (run.status != 0 || !match.hasMatch()) {
        return QString(u"status %1: "_s.arg(run.status) + run.output + run.errors).toStdString();
    }
    static const QRegularExpression notLetters(u"[^a-z]+"_s);
    return match.captured(1).toLower().replace(notLetters, u" "_s).trimmed().toStdString();
}

} // namespace

TEST_F(FileCommandTest, everyKindOfFileThatPeopleHaveIsHeard)
{
    const QStringList video = {u"-f"_s, u"lavfi"_s, u"-i"_s, u"color=size=64x64:rate=5:duration=10"_s,
                               u"-shortest"_s};
    const std::pair<QString, QStringList> rows[] = {
        {u"talk.mp3"_s, {}},
        {u"talk.m4a"_s, {}},
        {u"video.mkv"_s,
         QStringList(video) << u"-map"_s << u"1:v"_s << u"-map"_s << u"0:a"_s << u"-t"_s << u"10"_s},
        {u"studio.wav"_s, {u"-ar"_s, u"192000"_s, u"-ac"_s, u"8"_s}},
        {u"telephone.wav"_s, {u"-ar"_s, u"8000"_s, u"-acodec"_s, u"pcm_mulaw"_s}},
    };
    for (const auto &[name, options] : rows) {
        SCOPED_TRACE(name.toStdString());
        const ProgramRun run = transcribe(converted(name, options));
        EXPECT_THAT(wordsOf(run), HasSubstr("try again fail again fail better"));
        EXPECT_EQ(run.errors, QString()); // no progress where nobody watches
    }
}

TEST_F(FileCommandTest, aNameMayLookLikeAnythingAndBeRelative)
{
    // Silence, because what is tested is that the file is found, and silence needs no model.
    runTool(u"sox"_s, {u"-n"_s, u"-r"_s, u"16000"_s, at(u"silence.wav"), u"trim"_s, u"0"_s, u"1"_s});
    for (const QString &name : {u"--raw"_s, u"-i.wav"_s, u"größe 100%: a.wav"_s, u"file:x.wav"_s}) {
        ASSERT_TRUE(QFile::copy(at(u"silence.wav"), at(name)));
        const ProgramRun run =
            runVeskInShell(u"cd '%1' && \"$VESK\" --file '%2' --raw"_s.arg(testHome(), name));
        EXPECT_EQ(wordsOf(run), "") << name.toStdString();
    }
}

TEST_F(FileCommandTest, whatCannotBeHeardIsOneSentenceThatNamesTheFile)
{
    Files::replace(at(u"empty.wav"), "");
    Files::replace(at(u"letter.wav"), "Dear reader, this is no sound at all.\n");
    converted(u"whole.m4a");
    const QByteArray whole = Files::read(at(u"whole.m4a"));
    Files::replace(at(u"half.m4a"), whole.first(whole.size() / 2)); // the index stands at the end
    runTool(u"ffmpeg"_s,
            {u"-loglevel"_s, u"error"_s, u"-f"_s, u"lavfi"_s, u"-i"_s,
             u"color=size=64x64:rate=5:duration=1"_s, at(u"mute.mp4")});
    for (const char16_t *name :
         {u"missing.wav", u".", u"empty.wav", u"letter.wav", u"half.m4a", u"mute.mp4"}) {
        const ProgramRun run = transcribe(at(QStringView(name)));
        SCOPED_TRACE(run.errors.toStdString());
        EXPECT_EQ(run.status, 1);
        EXPECT_EQ(run.output, QString());
        EXPECT_EQ(run.errorLines().size(), 1);
        EXPECT_THAT(run.errors.toStdString(), StartsWith("error: "));
        if (QStringView(name) != u".") {
            EXPECT_THAT(run.errors.toStdString(), HasSubstr(QStringView(name).toString().toStdString()));
        }
    }
}

TEST_F(FileCommandTest, aFileThatIsCutOffIsHeardAsFarAsItGoesWithAWarning)
{
    const QByteArray whole = Files::read(sample());
    Files::replace(at(u"half.wav"), whole.first(whole.size() / 2));
    const ProgramRun run = transcribe(at(u"half.wav"));
    EXPECT_THAT(wordsOf(run), HasSubstr("ever failed"));
    EXPECT_THAT(run.errors.toStdString(), MatchesRegex("warning: half\\.wav .*\n"));
}

TEST_F(FileCommandTest, silenceIsAnEmptyText)
{
    runTool(u"sox"_s, {u"-n"_s, u"-r"_s, u"16000"_s, at(u"silence.wav"), u"trim"_s, u"0"_s, u"3"_s});
    EXPECT_EQ(wordsOf(transcribe(at(u"silence.wav"))), "");
}

TEST_F(FileCommandTest, theVocabularyOfTheSettingsSpellsWhatWasHeard)
{
    Config config;
    config.vocabulary = {u"EverTried"_s};
    config.write();
    EXPECT_THAT(transcribe(sample()).output.toStdString(), HasSubstr(" EverTried "));
}

TEST_F(FileCommandTest, anUnknownLanguageIsRefusedBeforeAnythingIsLoaded)
{
    Config config;
    config.locale = u"bg-BG"_s;
    config.write();
    const ProgramRun run = transcribe(sample());
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.errors, u"error: Apple's speech recognition does not support bg-BG\n"_s);
}

} // namespace vesk
