// The order of recognitions, moved by hand: nothing runs until the test lets the worker take its next block.

#include "Platform/Linux/Speech/LiveDecoding.h"

#include "Foundation/VeskError.h"
#include "Support/Await.h"

#include <gtest/gtest.h>

namespace vesk {

using namespace Qt::StringLiterals;

namespace {

using Kind = LiveStep::Kind;
constexpr std::int64_t Second = LiveStretches::SampleRate;

class LiveDecodingTest : public testing::Test {
protected:
    std::shared_ptr<LiveDecoding> make()
    {
        return std::make_shared<LiveDecoding>(
            [this](std::span<const float> samples) { return recognize(samples); },
            [this](std::function<void()> block) { blocks.push_back(std::move(block)); }, SentenceJoin({}));
    }

    QString recognize(std::span<const float> samples)
    {
        const int said = static_cast<int>(samples.front());
        decoded.push_back(said);
        if (whileDecoding) {
            std::exchange(whileDecoding, {})();
        }
        if (failsAt == said) {
            throw VeskError::noSpeechModel();
        }
        return u"Said %1."_s.arg(said);
    }

    /// The stretch [from, to) in seconds, in which the number is said.
    void step(Kind kind, std::int64_t from, std::int64_t to, int said, std::int64_t pauseBefore = Second)
    {
        const LiveStep step = {kind, {from * Second, to * Second}, pauseBefore};
        decoding->add(step,
                      decoding->needsSamples(step) ? std::vector<float>(10, static_cast<float>(said))
                                                   : std::vector<float>());
    }

    void runOne()
    {
        ASSERT_FALSE(blocks.empty());
        const auto block = std::move(blocks.front());
        blocks.pop_front();
        block();
    }

    void runAll()
    {
        while (!blocks.empty()) {
            runOne();
        }
    }

    QStringList results()
    {
        QStringList texts;
        while (const auto result = awaited(decoding->nextResult())) {
            texts.append(result->text);
        }
        return texts;
    }

    std::deque<std::function<void()>> blocks;
    std::vector<int> decoded;
    std::function<void()> whileDecoding;
    int failsAt = -1;
    std::shared_ptr<LiveDecoding> decoding = make();
};

} // namespace

TEST_F(LiveDecodingTest, aSpeculationThatHoldsIsTheResultAndIsDecodedOnce)
{
    for (const bool isDecodedBefore : {true, false}) { // before the stretch was known to be over, or after
        decoding = make();
        decoded.clear();
        step(Kind::speculate, 0, 3, 7);
        if (isDecodedBefore) {
            runAll();
        }
        step(Kind::complete, 0, 3, 8);
        decoding->end(AudioDuration(3));
        runAll();
        EXPECT_EQ(results(), QStringList{u"Said 7."_s});
        EXPECT_EQ(decoded, std::vector{7});
    }
}

TEST_F(LiveDecodingTest, whatWaitsInVainIsNeverDecodedAndWhatRunsInVainIsDropped)
{
    step(Kind::speculate, 0, 1, 1);
    whileDecoding = [this] { // the first one runs
        step(Kind::speculate, 0, 2, 2);
        step(Kind::speculate, 0, 3, 3);
        step(Kind::complete, 0, 4, 4);
        step(Kind::speculate, 5, 6, 5);
        decoding->end(AudioDuration(6));
    };
    runAll();
    EXPECT_EQ(decoded, (std::vector{1, 4}));
    EXPECT_EQ(results(), QStringList{u"Said 4."_s});
}

TEST_F(LiveDecodingTest, textsComeInOrderAndJoinedOnlyWhereThePauseWasShort)
{
    step(Kind::complete, 0, 4, 1);
    step(Kind::speculate, 4, 8, 2);
    step(Kind::complete, 4, 8, 2, 0); // cut in the flow of speech
    step(Kind::complete, 9, 12, 3, Second);
    decoding->end(AudioDuration(12));
    runAll();
    EXPECT_EQ(results(), (QStringList{u"Said 1"_s, u"said 2."_s, u"Said 3."_s}));
    EXPECT_EQ(decoded, (std::vector{1, 2, 3}));
}

TEST_F(LiveDecodingTest, aPieceThatNothingIsJoinedToIsNotHeldBack)
{
    step(Kind::complete, 0, 4, 1);
    runAll();
    const Task<std::optional<SpeechResult>> next = decoding->nextResult();
    QCoreApplication::processEvents();
    EXPECT_FALSE(next.isReady()) << "what follows may be joined to it";
    step(Kind::settle, 0, 0, 0);
    EXPECT_TRUE(eventually([&] { return next.isReady(); }));
}

TEST_F(LiveDecodingTest, aFailureEndsTheResultsAfterWhatWasUnderstood)
{
    failsAt = 2;
    step(Kind::complete, 0, 4, 1);
    step(Kind::complete, 5, 8, 2);
    step(Kind::complete, 9, 12, 3);
    runAll();
    EXPECT_TRUE(decoding->isOver());
    EXPECT_EQ(decoded, (std::vector{1, 2}));
    EXPECT_EQ(awaited(decoding->nextResult())->text, u"Said 1."_s);
    EXPECT_THROW(awaited(decoding->nextResult()), VeskError);
}

TEST_F(LiveDecodingTest, afterAbandoningNothingIsDecodedAndTheResultsEnd)
{
    step(Kind::complete, 0, 4, 1);
    runAll();
    step(Kind::complete, 5, 8, 2);
    decoding->abandon();
    step(Kind::complete, 9, 12, 3);
    decoding->end(AudioDuration(12), std::make_exception_ptr(VeskError::noSpeechModel()));
    runAll();
    EXPECT_EQ(decoded, std::vector{1});
    EXPECT_EQ(results(), QStringList());
}

} // namespace vesk
