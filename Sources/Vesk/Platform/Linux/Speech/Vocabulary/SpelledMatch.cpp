#include "Platform/Linux/Speech/Vocabulary/SpelledMatch.h"

#include <algorithm>
#include <ranges>
#include <span>

namespace vesk {

namespace {

using Run = std::span<const HeardWord>;

bool isSmall(const HeardWord &word) { return isSmallWord(word.stem); }

bool isLetter(const HeardWord &word) { return word.letters.size() == 1; }

bool isPartedAlike(Run run, const VocabularyEntry &entry)
{
    return std::ranges::equal(run, entry.words, {}, &HeardWord::letters, &SpokenWord::letters);
}

/// Points part letters ("H.264") or belong to the entry ("Node.js"); others end sentences or part addresses.
bool pointsAreWelcome(Run run, const VocabularyEntry &entry)
{
    for (std::size_t i = 1; i < run.size(); ++i) {
        if (run[i].followsDot && !isLetter(run[i - 1]) && !entry.written.contains(u'.')) {
            return false;
        }
    }
    return true;
}

bool mayStandFor(Run run, const VocabularyEntry &entry)
{
    if (entry.isOrdinary) {
        return isPartedAlike(run, entry);
    }
    if (run.size() == 1) {
        return run.front().kind != WordKind::ordinary;
    }
    if (entry.isOneToken || !pointsAreWelcome(run, entry)) {
        return false;
    }
    return isPartedAlike(run, entry) || std::ranges::none_of(run, isSmall)
        || std::ranges::all_of(run, isLetter);
}

/// "Zürichs" for "zurichs".
const VocabularyEntry *entryOfPlural(const VocabularyIndex &index, const HeardWord &word)
{
    constexpr std::size_t Shortest = 4;
    if (word.kind != WordKind::unknown || !word.stem.ends_with('s') || word.stem.size() <= Shortest) {
        return nullptr;
    }
    return index.spelled(word.stem.substr(0, word.stem.size() - 1));
}

} // namespace

std::optional<VocabularyMatch> spelledMatch(const VocabularyIndex &index, const std::vector<HeardWord> &words,
                                            std::size_t first)
{
    std::optional<VocabularyMatch> longest;
    std::string before;
    for (std::size_t count = 1; count <= index.longestRun() && first + count <= words.size(); ++count) {
        const HeardWord &last = words[first + count - 1];
        if (count > 1 && !last.followsClosely) {
            break;
        }
        const Run run(&words[first], count);
        if (!run.front().isBoundBefore && !last.isBoundAfter) {
            const auto consider = [&](const VocabularyEntry *entry, bool coversEnding, bool isPlural) {
                if (entry && mayStandFor(run, *entry)) {
                    longest = VocabularyMatch{first, count, entry, coversEnding, isPlural};
                }
                return entry != nullptr;
            };
            if (!consider(index.spelled(before + last.letters), true, false)
                && !consider(index.spelled(before + last.stem), false, false) && count == 1) {
                consider(entryOfPlural(index, last), false, true);
            }
        }
        before += last.letters;
    }
    return longest;
}

} // namespace vesk
