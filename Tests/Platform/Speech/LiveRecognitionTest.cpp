// Recognition while a person speaks, with the recogniser, the model and the detector for real.

#include "Dictation/Transcriber.h"
#include "Foundation/Log.h"
#include "Platform/Speech/InstalledModels.h"
#include "Support/AnalyzerContract.h"
#include "Support/Await.h"
#include "Support/Tones.h"

#include <QDir>

namespace vesk {

using namespace Qt::StringLiterals;
using namespace test;

namespace {

/// Six short sentences in ten seconds.
AudioBlock sample()
{
    FfmpegAudioFiles files;
    const auto reader = files.openForReading(InstalledSpeech + u"/sample.wav");
    AudioBlock sound = {reader->format(), {}};
    while (const auto block = reader->read()) {
        append(sound, *block);
    }
    return sound;
}

const QStringList SampleWords =
    words(u"Ever tried. Ever failed. No matter. Try again. Fail again. Fail better."_s);

std::unique_ptr<SpeechAnalyzer> analyzerWithoutModel()
{
    static FfmpegAudioConverters converters;
    static SherpaSpeechModels none({testHome() + u"/no/models", testHome() + u"/no"}, converters);
    return none.makeAnalyzer(u"en-US"_s);
}

/// A number of the last line about a live recognition in the log; a negative one when there is none.
double logged(const QString &name)
{
    const QRegularExpression pattern(u" live .*\\b"_s + name + u"=([0-9.]+)"_s);
    double number = -1;
    for (const QByteArray &line : logText().split('\n')) {
        const auto match = pattern.match(QString::fromUtf8(line));
        number = match.hasMatch() ? match.captured(1).toDouble() : number;
    }
    return number;
}

} // namespace

INSTANTIATE_TEST_SUITE_P(sherpa, AnalyzerContract,
                         testing::Values(AnalyzerRig{
                             "sherpa", [] { return installedModels().makeAnalyzer(u"en-US"_s); },
                             analyzerWithoutModel, sample, SampleWords}),
                         [](const auto &rig) { return rig.param.name; });

class LiveRecognition : public HomeTest {
protected:
    LiveRecognition() { QDir().mkpath(QFileInfo(Log::file()).path()); }
};

TEST_F(LiveRecognition, whatWasSaidIsRecognisedBeforeThePersonStops)
{
    const auto analyzer = installedModels().makeAnalyzer(u"en-US"_s);
    analyzer->start();
    AudioBlock sound = sample();
    append(sound, {sound.format, std::vector<float>(40000)}); // the key is still held
    feedInBlocks(*analyzer, sound);
    QString text;
    while (words(text).size() < SampleWords.size()) {
        const auto piece = awaited(analyzer->nextResult());
        ASSERT_TRUE(piece);
        text += piece->text + u' ';
    }
    EXPECT_EQ(words(text), SampleWords);
    analyzer->finish();
    EXPECT_EQ(awaited(analyzer->nextResult()), std::nullopt);
    EXPECT_GE(logged(u"stretches"_s), 2);
    EXPECT_EQ(logged(u"speculative"_s), logged(u"stretches"_s));
    EXPECT_GT(logged(u"first"_s), 0);
    EXPECT_LT(logged(u"first"_s), logged(u"released"_s));
    EXPECT_NEAR(logged(u"speech"_s), 12.5, 0.1);
}

TEST_F(LiveRecognition, whatIsSaidBeforeTheModelIsThereIsKept)
{
    FfmpegAudioConverters converters;
    SherpaSpeechModels cold({InstalledSpeech + u"/models", testHome() + u"/Models"}, converters);
    const auto analyzer = cold.makeAnalyzer(u"en-US"_s);
    const Task<> loading = cold.prepare(u"en-US"_s);
    analyzer->setContextualStrings({u"EverTried"_s});
    analyzer->start();
    feedInBlocks(*analyzer, sample());
    analyzer->finish();
    ASSERT_FALSE(loading.isReady());
    const QString text = awaited(Transcriber::collect(*analyzer));
    EXPECT_TRUE(text.contains(u"EverTried"_s)) << "the person's spelling";
    EXPECT_EQ(words(text).mid(1), SampleWords.mid(2));
    EXPECT_TRUE(eventually([&] { return loading.isReady(); }));
}

} // namespace vesk
