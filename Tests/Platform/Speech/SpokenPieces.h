#pragma once

#include "Platform/Linux/Speech/StretchCutter.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <random>

namespace vesk::test {

constexpr std::int64_t Second = StretchCutter::SampleRate;

inline std::int64_t samples(double seconds) { return static_cast<std::int64_t>(seconds * Second); }

/// Speech as it really is, in seconds.
struct Spoken {
    double from;
    double to;
};

/// What a detector says that notices a beginning and an end by so many samples late.
inline bool isNoticed(const std::vector<Spoken> &spoken, std::int64_t position, std::int64_t beginsLate,
                      std::int64_t endsLate)
{
    return std::ranges::any_of(spoken, [&](const Spoken &piece) {
        return position >= samples(piece.from) + beginsLate && position < samples(piece.to) + endsLate;
    });
}

inline bool covers(const Stretch &stretch, const Spoken &piece)
{
    return stretch.begin <= samples(piece.from) && stretch.end >= samples(piece.to);
}

/// Every piece lies whole in one of the stretches, which follow each other.
inline void expectNothingLost(const std::vector<Stretch> &stretches, const std::vector<Spoken> &spoken)
{
    std::size_t stretch = 0;
    for (const Spoken &piece : spoken) {
        while (stretch < stretches.size() && stretches[stretch].end < samples(piece.to)) {
            ++stretch;
            ASSERT_TRUE(stretch == stretches.size()
                        || stretches[stretch].begin >= stretches[stretch - 1].end);
        }
        ASSERT_LT(stretch, stretches.size()) << "at " << piece.from;
        EXPECT_TRUE(covers(stretches[stretch], piece)) << "at " << piece.from;
    }
}

/// Someone who speaks without a pause and is quieter for a moment only, and where that must be cut.
inline const std::vector<Spoken> WithoutAPause = {{0.5, 70}};
inline float energyOfABreath(double at) { return std::abs(at - 23.4) < 0.05 ? 0.1F : 1.0F; }
inline void expectCutAtTheBreath(const std::vector<Stretch> &stretches)
{
    ASSERT_GE(stretches.size(), 3U);
    EXPECT_NEAR(static_cast<double>(stretches[0].end) / Second, 23.4, 0.1);
    EXPECT_EQ(stretches[0].end, stretches[1].begin); // nothing lost, nothing twice
    for (const Stretch &stretch : stretches) {
        EXPECT_LE(stretch.end - stretch.begin, 29 * Second);
    }
}

/// Two minutes of speech and pauses between the shortest (seconds) and a longest one.
inline std::vector<Spoken> randomlySpoken(std::mt19937 &random, double shortestSpeech, double shortestPause,
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

} // namespace vesk::test
