#include "Support/AnalyzerContract.h"

#include "Dictation/Transcriber.h"
#include "Foundation/VeskError.h"
#include "Support/Await.h"
#include "Support/Tones.h"

#include <QRegularExpression>

namespace vesk::test {

using namespace Qt::StringLiterals;

namespace {

QStringList wordsOf(const QString &text)
{
    return text.toLower().split(QRegularExpression(u"[^a-z']+"_s), Qt::SkipEmptyParts);
}

AudioBlock silence(double seconds)
{
    return {{16000, 1}, std::vector<float>(static_cast<std::size_t>(seconds * 16000))};
}

} // namespace

void feedInBlocks(SpeechAnalyzer &analyzer, const AudioBlock &sound)
{
    constexpr qsizetype BlockFrames = 683; // 2048 at 48 kHz
    for (qsizetype at = 0; at < sound.frames(); at += BlockFrames) {
        analyzer.feed(part(sound, at, BlockFrames));
    }
}

TEST_P(AnalyzerContract, whatIsFedIsRecognisedInOrderAndThenTheResultsEnd)
{
    const auto analyzer = GetParam().make();
    analyzer->start();
    feedInBlocks(*analyzer, GetParam().sound());
    analyzer->finish();
    feedInBlocks(*analyzer, GetParam().sound()); // a block that is late
    std::vector<SpeechResult> results;
    const QString text = awaited(
        Transcriber::collect(*analyzer, [&](const SpeechResult &result) { results.push_back(result); }));
    EXPECT_EQ(wordsOf(text), GetParam().words);
    EXPECT_EQ(awaited(analyzer->nextResult()), std::nullopt);
    for (std::size_t i = 0; i < results.size(); ++i) {
        EXPECT_LT(results[i].start, results[i].end);
        EXPECT_TRUE(i == 0 || results[i].start >= results[i - 1].end);
    }
}

TEST_P(AnalyzerContract, silenceAndNothingGiveNoResult)
{
    for (const double seconds : {0.0, 0.01, 3.0}) {
        const auto analyzer = GetParam().make();
        analyzer->start();
        feedInBlocks(*analyzer, silence(seconds));
        analyzer->finish();
        EXPECT_EQ(awaited(analyzer->nextResult()), std::nullopt) << seconds;
    }
}

TEST_P(AnalyzerContract, cancellingEndsTheResultsWhoeverWaitsForThem)
{
    const auto analyzer = GetParam().make();
    analyzer->start();
    const Task<std::optional<SpeechResult>> waiting = analyzer->nextResult();
    feedInBlocks(*analyzer, GetParam().sound());
    analyzer->cancelAndFinishNow();
    analyzer->finish();
    EXPECT_TRUE(eventually([&] { return waiting.isReady(); }));
    EXPECT_EQ(awaited(analyzer->nextResult()), std::nullopt);
}

TEST_P(AnalyzerContract, droppedInMidSpeechItLeavesNothingBehind)
{
    const auto analyzer = GetParam().make();
    analyzer->start();
    feedInBlocks(*analyzer, GetParam().sound());
}

TEST_P(AnalyzerContract, aMissingModelEndsTheResults)
{
    const auto analyzer = GetParam().makeWithoutModel();
    analyzer->start();
    feedInBlocks(*analyzer, GetParam().sound());
    analyzer->finish();
    EXPECT_THROW(awaited(analyzer->nextResult()), VeskError);
}

} // namespace vesk::test
