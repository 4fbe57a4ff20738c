#include "Platform/Linux/Speech/LiveStretches.h"

#include "Platform/Speech/SpokenPieces.h"

#include <functional>

namespace vesk {

using namespace test;

namespace {

using Kind = LiveStep::Kind;

struct Heard {
    std::vector<LiveStep> steps;
    std::vector<std::int64_t> when;        ///< the position at which each step was made
    std::vector<std::size_t> stretches;    ///< which steps complete one
    std::vector<std::size_t> speculations; ///< how many went before each, since the one before
    std::int64_t mostKept = 0;             ///< samples that had to be kept at any moment

    const LiveStep &stretch(std::size_t index) const { return steps[stretches[index]]; }
    std::vector<Stretch> allStretches() const
    {
        std::vector<Stretch> all;
        for (const std::size_t step : stretches) {
            all.push_back(steps[step].stretch);
        }
        return all;
    }
};

/// What becomes of it behind a detector that notices speech a window late and a pause at once.
Heard live(const std::vector<Spoken> &spoken, double length, const std::function<float(double)> &energy = {})
{
    LiveStretches unit;
    Heard heard;
    std::size_t speculations = 0;
    std::int64_t position = 0;
    const auto take = [&](const std::optional<LiveStep> &step) {
        if (step) {
            speculations += step->kind == Kind::speculate ? 1 : 0;
            if (step->kind == Kind::complete) {
                heard.stretches.push_back(heard.steps.size());
                heard.speculations.push_back(std::exchange(speculations, 0));
            }
            heard.steps.push_back(*step);
            heard.when.push_back(position);
        }
    };
    while (position + LiveStretches::Window <= samples(length)) {
        position += LiveStretches::Window;
        const bool isSpeech = isNoticed(spoken, position, 2 * LiveStretches::Window, LiveStretches::Window);
        take(unit.add(isSpeech, energy ? energy(static_cast<double>(position) / Second) : 1.0F));
        heard.mostKept = std::max(heard.mostKept, position - unit.neededFrom());
    }
    position = samples(length);
    take(unit.finish(position));
    return heard;
}

} // namespace

TEST(LiveStretches, silenceAndClicksAskForNothingAndAreNotKept)
{
    EXPECT_TRUE(live({}, 600).steps.empty());
    const Heard clicks = live({{1, 1.05}, {5, 5.08}, {20, 20.02}}, 600);
    EXPECT_TRUE(clicks.steps.empty());
    EXPECT_LT(clicks.mostKept, 3 * Second);
}

TEST(LiveStretches, pausesEndWhatIsLongEnough)
{
    struct Row {
        const char *what;
        std::vector<Spoken> spoken;
        double length;
        std::vector<std::size_t> stretchOfPiece; // which stretch each piece must lie in, whole
        bool isLastAhead;                        // the last one had been speculated on when the sound ended
    };
    const Row rows[] = {
        {"let go in mid-word", {{1, 2}}, 2, {0}, false},
        {"let go after the last word", {{1, 2}}, 2.15, {0}, true},
        {"short ones stay together", {{1, 2}, {2.5, 3}, {4, 4.5}}, 4.7, {0, 0, 0}, true},
        {"three seconds end at a breath", {{1, 4.5}, {5, 6}}, 6.2, {0, 1}, true},
        {"but not between two words", {{1, 4.5}, {4.7, 6}}, 6.2, {0, 0}, true},
        {"a word ends after a long pause", {{1, 1.5}, {4.5, 5}}, 6, {0, 1}, true},
        {"twenty end at the first gap", {{1, 21.5}, {21.6, 23}}, 23.2, {0, 1}, true},
        {"speech from the first sample", {{0, 1}}, 1.2, {0}, true},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.what);
        const Heard heard = live(row.spoken, row.length);
        ASSERT_EQ(heard.stretches.size(), row.stretchOfPiece.back() + 1);
        for (std::size_t piece = 0; piece < row.spoken.size(); ++piece) {
            EXPECT_TRUE(covers(heard.stretch(row.stretchOfPiece[piece]).stretch, row.spoken[piece]))
                << "piece " << piece;
        }
        const std::size_t last = heard.stretches.back();
        EXPECT_EQ(last > 0 && heard.steps[last - 1].kind == Kind::speculate
                      && heard.steps[last - 1].stretch == heard.steps[last].stretch,
                  row.isLastAhead);
    }
}

TEST(LiveStretches, eachPauseIsSpeculatedOnOnceAndInItsFirstWindow)
{
    const std::vector<Spoken> spoken = {{1, 1.5}, {1.7, 2.2}, {3, 3.4}};
    const Heard heard = live(spoken, 4.2);
    ASSERT_EQ(heard.stretches.size(), 1U);
    ASSERT_EQ(heard.speculations.front(), spoken.size());
    for (std::size_t i = 0; i < spoken.size(); ++i) {
        EXPECT_EQ(heard.steps[i].kind, Kind::speculate);
        EXPECT_LE(heard.when[i] - samples(spoken[i].to), 3 * LiveStretches::Window);
        EXPECT_LE(heard.steps[i].stretch.begin, samples(0.75)) << "sound before the first word is kept";
    }
}

TEST(LiveStretches, thePauseBeforeAStretchIsMeasuredAndSettledWhenItIsLong)
{
    const Heard heard = live({{1, 5}, {5.5, 9}, {13, 17}}, 17.2);
    ASSERT_EQ(heard.stretches.size(), 3U);
    EXPECT_GT(heard.stretch(0).pauseBefore, 100 * Second);
    EXPECT_NEAR(static_cast<double>(heard.stretch(1).pauseBefore) / Second, 0.5, 0.1);
    EXPECT_NEAR(static_cast<double>(heard.stretch(2).pauseBefore) / Second, 4, 0.1);
    std::vector<std::int64_t> settled;
    for (std::size_t i = 0; i < heard.steps.size(); ++i) {
        if (heard.steps[i].kind == Kind::settle) {
            settled.push_back(heard.when[i]);
        }
    }
    ASSERT_EQ(settled.size(), 1U); // long before the third begins
    EXPECT_NEAR(static_cast<double>(settled[0]) / Second, 10.2, 0.1);
}

TEST(LiveStretches, someoneWhoNeverPausesIsCutAtTheQuietestMoment)
{
    const Heard heard = live(WithoutAPause, 75, energyOfABreath);
    expectCutAtTheBreath(heard.allStretches());
    EXPECT_EQ(heard.stretch(1).pauseBefore, 0);
    EXPECT_LT(heard.mostKept, 30 * Second);
}

TEST(LiveStretches, nothingSaidIsEverLostWhateverThePauses)
{
    std::mt19937 random(20261123);
    for (int round = 0; round < 200; ++round) {
        SCOPED_TRACE(round);
        const std::vector<Spoken> spoken = randomlySpoken(random, 0.2, 0.05, 3);
        const Heard heard = live(spoken, spoken.back().to + 1);
        expectNothingLost(heard.allStretches(), spoken);
        EXPECT_LT(heard.mostKept, 32 * Second);
    }
}

} // namespace vesk
