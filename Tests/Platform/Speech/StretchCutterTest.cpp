#include "Platform/Linux/Speech/StretchCutter.h"

#include "Platform/Speech/SpokenPieces.h"

#include <functional>

namespace vesk {

using namespace test;

namespace {

struct Heard {
    std::vector<Stretch> stretches;
    std::int64_t mostKept = 0; ///< samples that had to be kept at any moment
};

/// What the cutter makes of it behind a detector with the stated delays.
Heard cut(const std::vector<Spoken> &spoken, double length, const std::function<float(double)> &energy = {})
{
    const StretchCutter::Rules rules;
    StretchCutter cutter;
    Heard heard;
    const auto take = [&](const std::vector<Stretch> &more) {
        heard.stretches.insert(heard.stretches.end(), more.begin(), more.end());
    };
    std::int64_t position = 0;
    while (position + StretchCutter::Window <= samples(length)) {
        position += StretchCutter::Window;
        const bool isSpeech = isNoticed(spoken, position, rules.speechDelay, rules.silenceDelay);
        take(cutter.add(isSpeech, energy ? energy(static_cast<double>(position) / Second) : 1.0F));
        heard.mostKept = std::max(heard.mostKept, position - cutter.neededFrom());
    }
    take(cutter.finish(samples(length)));
    return heard;
}

} // namespace

TEST(StretchCutter, silenceGivesNothingAndKeepsNothing)
{
    const Heard heard = cut({}, 600);
    EXPECT_TRUE(heard.stretches.empty());
    EXPECT_LT(heard.mostKept, Second);
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
        const Heard heard = cut(spoken, spoken.back().to + (spoken.back().to < 10 ? 4 : 0));
        ASSERT_EQ(heard.stretches.size(), stretchOfPiece.back() + 1);
        for (std::size_t piece = 0; piece < spoken.size(); ++piece) {
            EXPECT_TRUE(covers(heard.stretches[stretchOfPiece[piece]], spoken[piece])) << "piece " << piece;
        }
    }
}

TEST(StretchCutter, soundAroundTheSpeechIsKeptButNeverTheNeighboursWords)
{
    const Heard heard = cut({{1, 10}, {10.4, 30}, {30.3, 33}}, 40);
    ASSERT_GE(heard.stretches.size(), 2U);
    EXPECT_LE(heard.stretches.front().begin, samples(0.75));
    EXPECT_GE(heard.stretches.back().end, samples(33.2));
    for (std::size_t i = 1; i < heard.stretches.size(); ++i) {
        EXPECT_GE(heard.stretches[i].begin, heard.stretches[i - 1].end);
    }
}

TEST(StretchCutter, someoneWhoNeverPausesIsCutAtTheQuietestMoment)
{
    const Heard heard = cut(WithoutAPause, 75, energyOfABreath);
    expectCutAtTheBreath(heard.stretches);
    EXPECT_LT(heard.mostKept, 30 * Second);
}

TEST(StretchCutter, nothingSaidIsEverLostWhateverThePauses)
{
    std::mt19937 random(20261123);
    for (int round = 0; round < 200; ++round) {
        SCOPED_TRACE(round);
        const std::vector<Spoken> spoken = randomlySpoken(random, 0.3, 0.4, 4);
        const Heard heard = cut(spoken, spoken.back().to + 1);
        expectNothingLost(heard.stretches, spoken);
        EXPECT_LT(heard.mostKept, 35 * Second);
    }
}

} // namespace vesk
