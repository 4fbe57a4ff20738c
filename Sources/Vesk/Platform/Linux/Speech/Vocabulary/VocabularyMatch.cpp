#include "Platform/Linux/Speech/Vocabulary/VocabularyMatch.h"

#include "Platform/Linux/Speech/Vocabulary/SoundMatch.h"
#include "Platform/Linux/Speech/Vocabulary/SpelledMatch.h"

#include <algorithm>

namespace vesk {

namespace {

struct Candidate {
    VocabularyMatch match;
    double distance = 0;
};

/// Whether the word at `last` may end a run by sound that began at `first`, and whether it may go on.
bool canBeIn(const std::vector<HeardWord> &words, const std::vector<bool> &isTaken, std::size_t first,
             std::size_t last)
{
    return !isTaken[last] && words[last].canBeMisheard
        && (last == first
            || (words[last].followsClosely && !words[last - 1].hasEnding() && !words[last].isBoundBefore));
}

std::vector<Candidate> soundCandidates(const VocabularyIndex &index, const std::vector<HeardWord> &words,
                                       const std::vector<bool> &isTaken)
{
    std::vector<Candidate> candidates;
    for (std::size_t first = 0; first < words.size(); ++first) {
        if (words[first].isBoundBefore) {
            continue;
        }
        for (std::size_t count = 1; count <= LongestSoundRun && first + count <= words.size(); ++count) {
            const std::size_t last = first + count - 1;
            if (!canBeIn(words, isTaken, first, last)) {
                break;
            }
            if (words[last].isBoundAfter) {
                continue;
            }
            if (const auto found = soundMatch(index, words, first, count)) {
                candidates.push_back(
                    {VocabularyMatch{first, count, found->entry, false, false}, found->distance});
            }
        }
    }
    return candidates;
}

void take(const VocabularyMatch &match, std::vector<bool> &isTaken, std::vector<VocabularyMatch> &matches)
{
    std::fill_n(isTaken.begin() + std::ptrdiff_t(match.first), match.count, true);
    matches.push_back(match);
}

} // namespace

std::vector<VocabularyMatch> vocabularyMatches(const VocabularyIndex &index,
                                               const std::vector<HeardWord> &words)
{
    std::vector<VocabularyMatch> matches;
    std::vector<bool> isTaken(words.size(), false);
    for (std::size_t first = 0; first < words.size();) {
        const auto found = spelledMatch(index, words, first);
        if (found) {
            take(*found, isTaken, matches);
        }
        first += found ? found->count : 1;
    }
    std::vector<Candidate> candidates = soundCandidates(index, words, isTaken);
    std::ranges::stable_sort(candidates, [](const Candidate &a, const Candidate &b) {
        return a.distance != b.distance ? a.distance < b.distance : a.match.count > b.match.count;
    });
    for (const Candidate &candidate : candidates) {
        const auto begin = isTaken.begin() + std::ptrdiff_t(candidate.match.first);
        if (std::none_of(begin, begin + std::ptrdiff_t(candidate.match.count), std::identity{})) {
            take(candidate.match, isTaken, matches);
        }
    }
    std::ranges::sort(matches, {}, &VocabularyMatch::first);
    return matches;
}

} // namespace vesk
