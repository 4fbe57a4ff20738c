// Which stretches of speech are recognised in one piece: of a file (StretchCutter), and while somebody speaks
// (LiveStretches).

#include "Platform/Linux/Speech/LiveStretches.h"
#include "Platform/Linux/Speech/StretchCutter.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <random>

namespace vesk {

namespace {

using Kind = LiveStep::Kind;
using Energy = std::function<float(double at)>;

constexpr std::int64_t Second = StretchCutter::SampleRate;
constexpr std::int64_t Window = StretchCutter::Window;

std::int64_t samples(double seconds) { return static_cast<std::int64_t>(seconds * Second); }
double seconds(std::int64_t samples) { return static_cast<double>(samples) / Second; }

/// Speech as it really is, in seconds.
struct Spoken {
    double from;
    double to;
};

/// Lets the unit hear it behind a detector that notices a beginning and an end by so many samples late. The
/// most samples that had to be kept at any moment.
template <typename Unit, typename Take>
std::int64_t hear(Unit &unit, const std::vector<Spoken> &spoken, double length, std::int64_t beginsLate,
                  std::int64_t endsLate, const Energy &energy, const Take &take)
{
    std::int64_t mostKept = 0;
    for (std::int64_t position = Window; position <= samples(length); position += Window) {
        const bool isNoticed = std::ranges::any_of(spoken, [&](const Spoken &piece) {
            return position >= samples(piece.from) + beginsLate && position < samples(piece.to) + endsLate;
        });
        take(unit.add(isNoticed, energy ? energy(seconds(position)) : 1.0F), position);
        mostKept = std::max(mostKept, position - unit.neededFrom());
    }
    take(unit.finish(samples(length)), samples(length));
    return mostKept;
}

struct Cut {
    std::vector<Stretch> stretches;
    std::int64_t mostKept = 0;
};

Cut cut(const std::vector<Spoken> &spoken, double length, const Energy &energy = {})
{
    const StretchCutter::Rules rules;
    StretchCutter cutter;
    Cut result;
    const auto take = [&](const std::vector<Stretch> &more, std::int64_t) {
        result.stretches.insert(result.stretches.end(), more.begin(), more.end());
    };
    result.mostKept = hear(cutter, spoken, length, rules.speechDelay, rules.silenceDelay, energy, take);
    return result;
}

struct Live {
    std::vector<LiveStep> steps;
    std::vector<std::int64_t> when;     ///< the position at which each step was made
    std::vector<std::size_t> completed; ///< which steps complete a stretch
    std::int64_t mostKept = 0;

    const LiveStep &stretch(std::size_t index) const { return steps[completed[index]]; }
    std::vector<Stretch> stretches() const
    {
        std::vector<Stretch> all;
        for (const std::size_t step : completed) {
            all.push_back(steps[step].stretch);
        }
        return all;
    }
};

Live live(const std::vector<Spoken> &spoken, double length, const Energy &energy = {})
{
    LiveStretches unit;
    Live result;
    const auto take = [&](const std::optional<LiveStep> &step, std::int64_t position) {
        if (step) {
            if (step->kind == Kind::complete) {
                result.completed.push_back(result.steps.size());
            }
            result.steps.push_back(*step);
            result.when.push_back(position);
        }
    };
    result.mostKept = hear(unit, spoken, length, 2 * Window, Window, energy, take);
    return result;
}

/// Each piece lies whole in the stretch with its number.
void expectWhole(const std::vector<Stretch> &stretches, const std::vector<Spoken> &spoken,
                 const std::vector<std::size_t> &stretchOfPiece)
{
    ASSERT_EQ(stretches.size(), stretchOfPiece.back() + 1);
    for (std::size_t piece = 0; piece < spoken.size(); ++piece) {
        EXPECT_LE(stretches[stretchOfPiece[piece]].begin, samples(spoken[piece].from)) << "piece " << piece;
        EXPECT_GE(stretches[stretchOfPiece[piece]].end, samples(spoken[piece].to)) << "piece " << piece;
    }
}

/// Every piece lies whole in one of the stretches, which follow each other.
void expectNothingLost(const std::vector<Stretch> &stretches, const std::vector<Spoken> &spoken)
{
    for (std::size_t i = 1; i < stretches.size(); ++i) {
        EXPECT_GE(stretches[i].begin, stretches[i - 1].end);
    }
    for (const Spoken &piece : spoken) {
        EXPECT_TRUE(std::ranges::any_of(stretches,
                                        [&](const Stretch &stretch) {
                                            return stretch.begin <= samples(piece.from)
                                                && stretch.end >= samples(piece.to);
                                        }))
            << "at " << piece.from;
    }
}

/// Two minutes of speech and pauses between the shortest (seconds) and a longest one.
std::vector<Spoken> randomlySpoken(std::mt19937 &random, double shortestSpeech, double shortestPause,
                                   double longestPause)
{
    std::uniform_real_distribution<double> speech(shortestSpeech, 12);
    std::uniform_real_distribution<double> pause(shortestPause, longestPause);
    std::vector<Spoken> spoken;
    for (double at = pause(random); at < 120; at = spoken.back().to + pause(random)) {
        spoken.push_back({at, at + speech(random)});
    }
    return spoken;
}

} // namespace

TEST(Stretches, silenceAndClicksGiveNothingAndAreNotKept)
{
    const Cut silence = cut({}, 600);
    EXPECT_TRUE(silence.stretches.empty());
    EXPECT_LT(silence.mostKept, Second);
    EXPECT_TRUE(live({}, 600).steps.empty());
    const Live clicks = live({{1, 1.05}, {5, 5.08}, {20, 20.02}}, 600);
    EXPECT_TRUE(clicks.steps.empty());
    EXPECT_LT(clicks.mostKept, 3 * Second);
}

TEST(Stretches, someoneWhoNeverPausesIsCutAtTheQuietestMoment)
{
    const std::vector<Spoken> spoken = {{0.5, 70}};
    const auto breath = [](double at) { return std::abs(at - 23.4) < 0.05 ? 0.1F : 1.0F; };
    const Cut ofFile = cut(spoken, 75, breath);
    const Live spokenNow = live(spoken, 75, breath);
    for (const auto &stretches : {ofFile.stretches, spokenNow.stretches()}) {
        ASSERT_GE(stretches.size(), 3U);
        EXPECT_NEAR(seconds(stretches[0].end), 23.4, 0.1);
        EXPECT_EQ(stretches[0].end, stretches[1].begin); // nothing lost, nothing twice
        for (const Stretch &stretch : stretches) {
            EXPECT_LE(stretch.end - stretch.begin, 29 * Second);
        }
    }
    EXPECT_EQ(spokenNow.stretch(1).pauseBefore, 0);
    EXPECT_LT(std::max(ofFile.mostKept, spokenNow.mostKept), 30 * Second);
}

TEST(Stretches, nothingSaidIsEverLostWhateverThePauses)
{
    std::mt19937 random(20261123);
    for (int round = 0; round < 200; ++round) {
        SCOPED_TRACE(round);
        const std::vector<Spoken> slow = randomlySpoken(random, 0.3, 0.4, 4);
        const Cut ofFile = cut(slow, slow.back().to + 1);
        expectNothingLost(ofFile.stretches, slow);
        EXPECT_LT(ofFile.mostKept, 35 * Second);
        const std::vector<Spoken> quick = randomlySpoken(random, 0.2, 0.05, 3);
        const Live spokenNow = live(quick, quick.back().to + 1);
        expectNothingLost(spokenNow.stretches(), quick);
        EXPECT_LT(spokenNow.mostKept, 32 * Second);
    }
}

TEST(StretchCutter, shortPausesAreBridgedAndLongOnesEndAStretch)
{
    // Which stretch each piece must lie in, whole.
    const std::tuple<const char *, std::vector<Spoken>, std::vector<std::size_t>> rows[] = {
        {"one piece", {{1, 3}}, {0}},
        {"a breath", {{1, 3}, {3.5, 5}}, {0, 0}},
        {"a long pause", {{1, 3}, {6, 8}}, {0, 1}},
        {"at the very beginning and end", {{0, 2}, {8, 10}}, {0, 1}},
        {"no room for the third", {{1, 9}, {10, 18}, {19, 27}}, {0, 0, 1}},
    };
    for (const auto &[what, spoken, stretchOfPiece] : rows) {
        SCOPED_TRACE(what);
        const double length = spoken.back().to + (spoken.back().to < 10 ? 4 : 0);
        expectWhole(cut(spoken, length).stretches, spoken, stretchOfPiece);
    }
}

TEST(StretchCutter, soundAroundTheSpeechIsKeptButNeverTheNeighboursWords)
{
    const std::vector<Stretch> stretches = cut({{1, 10}, {10.4, 30}, {30.3, 33}}, 40).stretches;
    ASSERT_GE(stretches.size(), 2U);
    EXPECT_LE(stretches.front().begin, samples(0.75));
    EXPECT_GE(stretches.back().end, samples(33.2));
    expectNothingLost(stretches, {});
}

TEST(LiveStretches, pausesEndWhatIsLongEnough)
{
    struct Row {
        const char *what;
        std::vector<Spoken> spoken;
        double length;
        std::vector<std::size_t> stretchOfPiece;
        bool isLastAhead; // the last one had been speculated on when the sound ended
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
        const Live heard = live(row.spoken, row.length);
        ASSERT_NO_FATAL_FAILURE(expectWhole(heard.stretches(), row.spoken, row.stretchOfPiece));
        const std::size_t last = heard.completed.back();
        EXPECT_EQ(last > 0 && heard.steps[last - 1].kind == Kind::speculate
                      && heard.steps[last - 1].stretch == heard.steps[last].stretch,
                  row.isLastAhead);
    }
}

TEST(LiveStretches, eachPauseIsSpeculatedOnOnceAndInItsFirstWindow)
{
    const std::vector<Spoken> spoken = {{1, 1.5}, {1.7, 2.2}, {3, 3.4}};
    const Live heard = live(spoken, 4.2);
    ASSERT_EQ(heard.completed, std::vector{spoken.size()}) << "as many speculations, and then the stretch";
    for (std::size_t i = 0; i < spoken.size(); ++i) {
        EXPECT_EQ(heard.steps[i].kind, Kind::speculate);
        EXPECT_LE(heard.when[i] - samples(spoken[i].to), 3 * Window);
        EXPECT_LE(heard.steps[i].stretch.begin, samples(0.75)) << "sound before the first word is kept";
    }
}

TEST(LiveStretches, thePauseBeforeAStretchIsMeasuredAndSettledWhenItIsLong)
{
    const Live heard = live({{1, 5}, {5.5, 9}, {13, 17}}, 17.2);
    ASSERT_EQ(heard.completed.size(), 3U);
    EXPECT_GT(heard.stretch(0).pauseBefore, 100 * Second);
    EXPECT_NEAR(seconds(heard.stretch(1).pauseBefore), 0.5, 0.1);
    EXPECT_NEAR(seconds(heard.stretch(2).pauseBefore), 4, 0.1);
    ASSERT_EQ(std::ranges::count(heard.steps, Kind::settle, &LiveStep::kind), 1);
    const auto settled = std::ranges::find(heard.steps, Kind::settle, &LiveStep::kind) - heard.steps.begin();
    EXPECT_NEAR(seconds(heard.when[static_cast<std::size_t>(settled)]), 10.2, 0.1)
        << "before the third begins";
}

} // namespace vesk
