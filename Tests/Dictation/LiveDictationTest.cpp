#include "Dictation/LiveDictation.h"

#include "Platform/Linux/Speech/FfmpegAudioConverter.h"
#include "Support/AnalyzerContract.h"
#include "Support/Await.h"
#include "Support/FakeSound.h"
#include "Support/FakeSpeech.h"
#include "Support/Tones.h"

namespace vesk {

using namespace Qt::StringLiterals;
using namespace test;

namespace {

SpeechResult said(const QString &text, double end)
{
    return {text, AudioDuration(end - 1), AudioDuration(end)};
}

class LiveDictationTest : public testing::Test {
protected:
    LiveDictationTest()
    {
        sound.plug(u"microphone"_s);
        models.results = {said(u"One"_s, 1), said(u"two  three."_s, 2)};
    }

    LiveDictation::Services services() { return {models, converters, sound.devices(), sound.engines()}; }

    void start(LiveDictation &dictation, const QStringList &vocabulary = {})
    {
        dictation.start(u"en-US"_s, vocabulary, u"auto"_s,
                        [this](float loudness) { levels.push_back(loudness); });
        awaitSetup(dictation);
    }

    /// What was dropped ends on the event loop and uses the fakes until then.
    ~LiveDictationTest() override
    {
        eventually([this] { return sound.engineCount() == 0; });
    }

    FakeSound sound{FakeSound::Source::test};
    FakeSpeechModels models;
    FfmpegAudioConverters converters;
    std::vector<float> levels; ///< of the thread that delivers, which the test waits for
};

std::unique_ptr<SpeechAnalyzer> fakeAnalyzer(bool isInstalled)
{
    QList<SpeechResult> results = {said(u"One"_s, 1), said(u"two  three."_s, 2)};
    return isInstalled ? std::make_unique<FakeSpeechAnalyzer>(results, nullptr)
                       : std::make_unique<FakeSpeechAnalyzer>(
                             QList<SpeechResult>(), std::make_exception_ptr(VeskError::noSpeechModel()));
}

} // namespace

INSTANTIATE_TEST_SUITE_P(fake, AnalyzerContract,
                         testing::Values(AnalyzerRig{"fake",
                                                     [] { return fakeAnalyzer(true); },
                                                     [] { return fakeAnalyzer(false); },
                                                     [] { return tone({16000, 1}, 440, 16000); },
                                                     {u"one"_s, u"two"_s, u"three"_s}}),
                         [](const auto &rig) { return rig.param.name; });

TEST_F(LiveDictationTest, whatIsSaidWhileTheKeyIsHeldBecomesTheText)
{
    LiveDictation dictation(services());
    start(dictation);
    for (int i = 0; i < 10; ++i) {
        sound.deliver(tone({48000, 2}, 440, 2048));
    }
    EXPECT_EQ(models.lastAnalyzer->heard.format, (AudioFormat{16000, 1}));
    EXPECT_NEAR(static_cast<double>(models.lastAnalyzer->heard.frames()), 10 * 2048 / 3.0, 40);
    EXPECT_EQ(awaited(dictation.finish()), u"One two three."_s);
    EXPECT_EQ(sound.recordings(), 0);
    ASSERT_EQ(levels.size(), 10U);
    EXPECT_NEAR(levels.front(), 0.91F, 0.01F); // a tone at -9 dBFS
    EXPECT_EQ(dictation.stats().frames, 20480);
    EXPECT_EQ(dictation.stats().device, u"The microphone"_s);
}

TEST_F(LiveDictationTest, piecesAreJoinedByOneBlankAndRunsOfWhiteSpaceCollapse)
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
        LiveDictation dictation(services());
        start(dictation);
        sound.deliver(tone({48000, 2}, 440, 2048));
        EXPECT_EQ(awaited(dictation.finish()), text);
    }
}

TEST_F(LiveDictationTest, whatWasNeverStartedSaysNothing)
{
    LiveDictation dictation(services());
    EXPECT_FALSE(dictation.setup());
    EXPECT_EQ(awaited(dictation.finish()), QString());
    LiveDictation cancelled(services());
    cancelled.cancel();
}

TEST_F(LiveDictationTest, whatPreventsTheStartIsThrownToEveryoneWhoAsks)
{
    const std::pair<std::function<void()>, VeskError> rows[] = {
        {[] {}, VeskError::unsupportedLocale(u"bg-BG"_s)},
        {[this] { models.isInstalled = false; }, VeskError::noSpeechModel()},
        {[this] { sound.setDenied(true); }, VeskError::microphoneDenied()},
        {[this] { sound.unplug(u"microphone"_s); }, VeskError::noMicrophone()},
    };
    QString locale = u"bg-BG"_s;
    for (const auto &[arrange, expected] : rows) {
        arrange();
        LiveDictation dictation(services());
        dictation.start(std::exchange(locale, u"en-US"_s), {}, u"auto"_s, {});
        const std::function<void()> actions[] = {[&] { awaitSetup(dictation); },
                                                 [&] { awaitSetup(dictation); },
                                                 [&] { awaited(dictation.finish()); }};
        for (const auto &action : actions) {
            try {
                action();
                ADD_FAILURE() << "nothing was thrown: " << expected.what();
            } catch (const VeskError &error) {
                EXPECT_EQ(error, expected);
            }
        }
        EXPECT_EQ(sound.recordings(), 0);
        models.isInstalled = true;
        sound.setDenied(false);
    }
}

TEST_F(LiveDictationTest, aCancelledDictationReleasesTheMicrophoneAndTheRecogniser)
{
    {
        LiveDictation cancelled(services());
        start(cancelled);
        EXPECT_EQ(sound.recordings(), 1);
        cancelled.cancel();
        EXPECT_TRUE(eventually([this] { return sound.recordings() == 0; }));
        EXPECT_TRUE(eventually([this] { return models.lastAnalyzer->isCancelled; }));
        cancelled.cancel();
    }
    {
        LiveDictation dropped(services());
        start(dropped);
    }
    EXPECT_TRUE(eventually([this] { return sound.recordings() == 0; }));
}

TEST_F(LiveDictationTest, aRecogniserThatFailsHalfWayIsTheOutcome)
{
    models.failure = std::make_exception_ptr(AudioFileError(u"the recogniser broke"_s));
    LiveDictation dictation(services());
    start(dictation);
    sound.deliver(tone({48000, 2}, 440, 2048));
    EXPECT_THROW(awaited(dictation.finish()), AudioFileError);
}

TEST_F(LiveDictationTest, theTextArrivesEvenWhenTheDictationIsDroppedMeanwhile)
{
    auto dictation = std::make_unique<LiveDictation>(services());
    start(*dictation);
    sound.deliver(tone({48000, 2}, 440, 2048));
    Task<QString> text = dictation->finish();
    dictation.reset();
    EXPECT_EQ(awaited(std::move(text)), u"One two three."_s);
}

TEST_F(LiveDictationTest, onlyAVocabularyThatHoldsSomethingIsHandedOn)
{
    for (const QStringList &vocabulary : {QStringList(), QStringList{u"QCoro"_s}}) {
        LiveDictation dictation(services());
        start(dictation, vocabulary);
        EXPECT_EQ(models.lastAnalyzer->contextualStrings,
                  vocabulary.isEmpty() ? std::nullopt : std::optional(vocabulary));
    }
}

} // namespace vesk
