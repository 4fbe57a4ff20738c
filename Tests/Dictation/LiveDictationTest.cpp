#include "Dictation/LiveDictation.h"

#include "Platform/Linux/Speech/FfmpegAudioConverter.h"
#include "Support/Await.h"
#include "Support/FakeSound.h"
#include "Support/FakeSpeech.h"
#include "Support/Tones.h"

#include <gmock/gmock.h>

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

} // namespace

TEST_F(LiveDictationTest, whatIsSaidWhileTheKeyIsHeldBecomesTheText)
{
    LiveDictation dictation(services());
    start(dictation, {u"QCoro"_s});
    EXPECT_EQ(models.lastAnalyzer->contextualStrings, QStringList{u"QCoro"_s});
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
    EXPECT_EQ(awaited(dictation.finish()), QString());
    LiveDictation(services()).cancel();
}

TEST_F(LiveDictationTest, whatPreventsTheStartIsThrownToEveryoneWhoAsks)
{
    const std::tuple<QString, std::function<void()>, VeskError> rows[] = {
        {u"bg-BG"_s, [] {}, VeskError::unsupportedLocale(u"bg-BG"_s)},
        {u"en-US"_s, [this] { models.isInstalled = false; }, VeskError::noSpeechModel()},
        {u"en-US"_s, [this] { sound.setDenied(true); }, VeskError::microphoneDenied()},
        {u"en-US"_s, [this] { sound.unplug(u"microphone"_s); }, VeskError::noMicrophone()},
    };
    for (const auto &[locale, arrange, expected] : rows) {
        arrange();
        LiveDictation dictation(services());
        dictation.start(locale, {}, u"auto"_s, {});
        const auto isWhy = testing::Throws<VeskError>(expected);
        EXPECT_THAT([&] { awaitSetup(dictation); }, isWhy);
        EXPECT_THAT([&] { awaited(dictation.finish()); }, isWhy);
        EXPECT_EQ(sound.recordings(), 0);
        models.isInstalled = true;
        sound.setDenied(false);
    }
}

TEST_F(LiveDictationTest, cancelledOrDroppedItReleasesTheMicrophoneAndTheRecogniser)
{
    auto cancelled = std::make_unique<LiveDictation>(services());
    start(*cancelled);
    EXPECT_EQ(models.lastAnalyzer->contextualStrings, std::nullopt) << "there are no words to hand on";
    cancelled->cancel();
    EXPECT_TRUE(eventually([this] { return sound.recordings() == 0; }));
    EXPECT_TRUE(eventually([this] { return models.lastAnalyzer->isCancelled; }));
    cancelled.reset();

    auto dropped = std::make_unique<LiveDictation>(services());
    start(*dropped);
    dropped.reset();
    EXPECT_TRUE(eventually([this] { return sound.recordings() == 0; }));
}

TEST_F(LiveDictationTest, theOutcomeArrivesAlsoWhenTheDictationIsDroppedMeanwhile)
{
    for (const bool isFailing : {false, true}) {
        if (isFailing) { // half-way
            models.failure = std::make_exception_ptr(AudioFileError(u"the recogniser broke"_s));
        }
        auto dictation = std::make_unique<LiveDictation>(services());
        start(*dictation);
        sound.deliver(tone({48000, 2}, 440, 2048));
        Task<QString> text = dictation->finish();
        dictation.reset();
        if (isFailing) {
            EXPECT_THROW(awaited(std::move(text)), AudioFileError);
        } else {
            EXPECT_EQ(awaited(std::move(text)), u"One two three."_s);
        }
    }
}

} // namespace vesk
