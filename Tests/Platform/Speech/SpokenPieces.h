#pragma once

#include "Platform/Linux/Speech/StretchCutter.h"

#include <algorithm>
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
