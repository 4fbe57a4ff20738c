#include "Dictation/Transcriber.h"

#include "Support/Await.h"
#include "Support/FakeSpeech.h"

#include <gtest/gtest.h>

namespace vesk {

using namespace Qt::StringLiterals;

namespace {

class TranscriberTest : public testing::Test {
protected:
    Transcriber::Transcript transcribe(QString locale = u"en-US"_s, QStringList vocabulary = {},
                                       QString file = u"talk.wav"_s)
    {
        return awaited(Transcriber::transcribe(models, files, std::move(file), std::move(locale),
                                               std::move(vocabulary)));
    }

    FakeSpeechModels models;
    FakeAudioFiles files;
};

SpeechResult said(const QString &text, double end)
{
    return {text, AudioDuration(end - 1), AudioDuration(end)};
}

} // namespace

TEST_F(TranscriberTest, piecesAreJoinedByOneBlankAndRunsOfWhiteSpaceCollapse)
{
    const std::pair<QStringList, QString> rows[] = {
        {{}, u""_s},
        {{u"One."_s, u"two   and\n\tthree "_s}, u"One. two and three"_s},
        {{u"  "_s, u"\u00a0"_s, u"\n"_s}, u""_s},
        {{u""_s, u"only"_s, u""_s}, u"only"_s},
    };
    for (const auto &[pieces, text] : rows) {
        models.results.clear();
        for (const QString &piece : pieces) {
            models.results.append(said(piece, 1.0 + static_cast<double>(models.results.size())));
        }
        EXPECT_EQ(transcribe().text, text);
    }
}

TEST_F(TranscriberTest, anUnknownLanguageIsToldFromAMissingModelAndFromAMissingFile)
{
    EXPECT_THROW(
        {
            try {
                transcribe(u"bg-BG"_s);
            } catch (const VeskError &error) {
                EXPECT_EQ(error, VeskError::unsupportedLocale(u"bg-BG"_s));
                throw;
            }
        },
        VeskError);
    EXPECT_THROW(transcribe(u"en-US"_s, {}, u"missing.wav"_s), AudioFileError);

    models.isInstalled = false;
    EXPECT_THROW(awaited(Transcriber::prepare(models, u"en-US"_s)), VeskError);
    EXPECT_THROW(awaited(Transcriber::prepare(models, u"xx"_s)), VeskError);
    models.isInstalled = true;
    awaited(Transcriber::prepare(models, u"en-GB"_s));
    EXPECT_EQ(models.prepared, QStringList{u"en-GB"_s});
}

TEST_F(TranscriberTest, aFailureAfterSomeResultsIsTheOutcome)
{
    models.results = {said(u"lost"_s, 1)};
    models.failure = std::make_exception_ptr(AudioFileError(u"talk.wav went away"_s));
    EXPECT_THROW(transcribe(), AudioFileError);
}

TEST_F(TranscriberTest, whatTheFileLackedComesWithTheText)
{
    models.results = {said(u"half"_s, 1)};
    files.shortfall = u"talk.wav ends early"_s;
    const Transcriber::Transcript transcript = transcribe();
    EXPECT_EQ(transcript.text, u"half"_s);
    EXPECT_EQ(transcript.shortfall, u"talk.wav ends early"_s);
}

TEST_F(TranscriberTest, theVocabularyReachesTheRecogniserAndAnEmptyOneDoesNot)
{
    for (const QStringList &vocabulary : {QStringList(), QStringList{u"QCoro"_s}}) {
        std::optional<QStringList> given;
        const auto look = [&](std::optional<AudioDuration>) {};
        models.results = {said(u"x"_s, 1)};
        awaited(Transcriber::transcribe(
            models, files, u"talk.wav"_s, u"en"_s, vocabulary, look,
            [&](const SpeechResult &) { given = models.lastAnalyzer->contextualStrings; }));
        EXPECT_EQ(given, vocabulary.isEmpty() ? std::nullopt : std::optional(vocabulary));
    }
}

} // namespace vesk
