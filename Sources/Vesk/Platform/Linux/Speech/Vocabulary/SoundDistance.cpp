#include "Platform/Linux/Speech/Vocabulary/Phonetics.h"

#include <algorithm>
#include <array>
#include <vector>

namespace vesk::Phonetics {

namespace {

using namespace std::string_view_literals;

constexpr std::string_view Vowels = "aeiou";
constexpr int Different = 100;

struct Likeness {
    std::string_view pairs; ///< two characters each
    int cost;
};

/// Voice first, then place, then what one spelling stands for in two languages. Vowels next to each other in
/// the mouth cost less than others. Set by hand on what the recogniser wrote for 83 names and terms that were
/// read to it, and checked on 60 others (the figures stand in VocabularyCorrection.h).
constexpr std::array Likenesses{
    Likeness{"szyiwu"sv, 10},       Likeness{"SZ"sv, 20},       Likeness{"ZJ"sv, 20},
    Likeness{"gJaeeiaoou"sv, 25},   Likeness{"SCTdTtvw"sv, 30}, Likeness{"pbtdkgfvCJzZsSkCeoiuauai"sv, 40},
    Likeness{"mnbvTshkTfeu"sv, 50},
};

constexpr int classOf(char sound)
{
    constexpr std::array<std::string_view, 7> Places{"pb", "fv", "tdT", "kg", "sz", "SZCJ", "mn"};
    for (std::size_t i = 0; i < Places.size(); ++i) {
        if (Places[i].find(sound) != std::string_view::npos) {
            return int(i);
        }
    }
    return -1;
}

using Costs = std::array<std::array<int, 128>, 128>;

constexpr Costs makeCosts()
{
    Costs costs{};
    for (std::size_t a = 0; a < costs.size(); ++a) {
        for (std::size_t b = 0; b < costs.size(); ++b) {
            costs[a][b] = a == b ? 0 : Different;
        }
    }
    for (const Likeness &likeness : Likenesses) {
        for (std::size_t i = 0; i < likeness.pairs.size(); i += 2) {
            const auto a = static_cast<unsigned char>(likeness.pairs[i]);
            const auto b = static_cast<unsigned char>(likeness.pairs[i + 1]);
            costs[a][b] = costs[b][a] = likeness.cost;
        }
    }
    return costs;
}

constexpr Costs SoundCosts = makeCosts();

constexpr bool isVowel(char sound) { return Vowels.find(sound) != std::string_view::npos; }

/// A vowel at the end tells Maria from Mario and Petrov from Petrova; one in the middle is often swallowed.
int costOfMissing(std::string_view sounds, std::size_t i)
{
    const char sound = sounds[i];
    if (isVowel(sound)) {
        return i + 1 == sounds.size() ? 110 : i == 0 ? 60 : 35;
    }
    switch (sound) {
    case 'h': return 20;
    case 'y': return 25;
    case 'w': return 30;
    case 'r': return i > 0 && isVowel(sounds[i - 1]) ? 50 : Different;
    default: return Different;
    }
}

/// Beginnings are heard best: Aleksandr is not Oleksandr.
constexpr int OtherFirstVowel = Different;
constexpr int OtherLastVowel = 70;

int costOfOther(std::string_view one, std::size_t i, std::string_view other, std::size_t j)
{
    const int cost = SoundCosts[std::size_t(one[i])][std::size_t(other[j])];
    if (i == 0 && j == 0) {
        return cost > 0 && isVowel(one[0]) && isVowel(other[0]) ? OtherFirstVowel : cost + cost / 2;
    }
    const bool areLast = i + 1 == one.size() && j + 1 == other.size();
    return areLast && cost > 0 && isVowel(one[i]) && isVowel(other[j]) ? OtherLastVowel : cost;
}

} // namespace

int distance(std::string_view one, std::string_view other, int limit)
{
    constexpr std::size_t Longest = 96;
    if (one.size() >= Longest || other.size() >= Longest) {
        return one == other ? 0 : limit + 1;
    }
    std::array<int, Longest> missing{};
    std::array<int, Longest> row{};
    for (std::size_t j = 0; j < other.size(); ++j) {
        missing[j] = costOfMissing(other, j);
        row[j + 1] = row[j] + missing[j];
    }
    for (std::size_t i = 0; i < one.size(); ++i) {
        int diagonal = row[0];
        const int added = costOfMissing(one, i);
        row[0] += added;
        int lowest = row[0];
        for (std::size_t j = 0; j < other.size(); ++j) {
            const int replaced = diagonal + costOfOther(one, i, other, j);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, diagonal + added, row[j] + missing[j]});
            lowest = std::min(lowest, row[j + 1]);
        }
        if (lowest > limit) {
            return limit + 1;
        }
    }
    return std::min(row[other.size()], limit + 1);
}

std::string skeleton(std::string_view sounds)
{
    std::string result;
    for (const char sound : sounds) {
        if (const int place = classOf(sound); place >= 0) {
            result += char('0' + place);
        } else if (sound == 'l' || sound == 'r') {
            result += sound;
        }
    }
    return result;
}

} // namespace vesk::Phonetics
