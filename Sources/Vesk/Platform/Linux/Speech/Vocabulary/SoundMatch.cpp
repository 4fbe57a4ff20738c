#include "Platform/Linux/Speech/Vocabulary/SoundMatch.h"

#include "Platform/Linux/Speech/Vocabulary/Letters.h"
#include "Platform/Linux/Speech/Vocabulary/Phonetics.h"

#include <algorithm>
#include <array>
#include <span>

namespace vesk {

namespace {

using Run = std::span<const HeardWord>;

/// Two spellings of one sound: no more apart than s and z.
constexpr int SameSound = 12;

/// How far an entry of so many sounds may be from what was heard when nothing else speaks against it. The
/// shorter it is, the more other words are as near: of four sounds only the same sound counts.
constexpr int furthest(std::size_t sounds)
{
    constexpr std::array Furthest{-1, -1, -1, -1, SameSound, SameSound, 40, 60};
    constexpr int Most = 110;
    return sounds < Furthest.size() ? Furthest[sounds] : std::min(Most, int(sounds) * 10);
}

/// What was heard, and how willingly it is given up.
struct Heard {
    std::string sounds;
    std::string letters;
    std::string spelledLetters; ///< with the names of letters as letters: "queue coro" is "qcoro"
    std::size_t count = 0;
    bool isPartedOtherwise = false; ///< the entry has several words, and not as many
    bool isKnown = true;            ///< every word is a word or a name
    bool hasOrdinary = false;
    bool hasSmall = false;
    bool hasLetter = false; ///< a letter stands alone, as in "Q coro"
};

Heard heard(Run run)
{
    Heard result;
    result.count = run.size();
    for (const HeardWord &word : run) {
        result.sounds += word.sounds;
        result.letters += word.stem;
        const char letter = run.size() > 1 ? Phonetics::letterNamed(word.stem) : '\0';
        result.spelledLetters += letter ? std::string(1, letter) : word.stem;
        const bool isOrdinary = word.kind == WordKind::ordinary || word.isCompound;
        result.isKnown = result.isKnown && (isOrdinary || word.kind == WordKind::name);
        result.hasOrdinary = result.hasOrdinary || isOrdinary;
        result.hasLetter = result.hasLetter || word.stem.size() == 1;
        result.hasSmall = result.hasSmall || isSmallWord(word.stem);
    }
    return result;
}

bool isNearlySpelled(const Heard &heard, std::string_view letters, bool soundsTheSame)
{
    const auto isNear = [&](std::string_view spelling) {
        const std::size_t most = std::max(spelling.size(), letters.size()) * (soundsTheSame ? 50 : 45) / 100;
        return Letters::editDistance(spelling, letters) <= most;
    };
    return isNear(heard.letters) || isNear(heard.spelledLetters);
}

int limit(const Heard &heard, const VocabularyEntry &entry, std::size_t sounds)
{
    constexpr std::size_t ShortestName = 4;
    constexpr std::size_t ShortestOfKnown = 6;
    if (heard.hasSmall || (heard.hasLetter && !entry.hasLetterNames)) {
        return -1;
    }
    const int most = furthest(sounds);
    if (heard.isKnown) {
        const bool isLongEnough = heard.count == 1
            ? sounds >= ShortestName
            : sounds >= ShortestOfKnown && heard.count == entry.partCount;
        return isLongEnough ? std::min(most, SameSound) : -1;
    }
    if (entry.isOtherScript || heard.isPartedOtherwise) {
        return std::min(most, SameSound);
    }
    return heard.hasOrdinary ? most / 2 : most;
}

/// How far the word is from the nearest way of saying the other, or -1 when that is too far. A name that is
/// known was heard as an English one: Evan is not Ewan as a German says it.
double distance(const Heard &heard, const VocabularyEntry &entry, const SpokenWord &wanted)
{
    double nearest = -1;
    const auto consider = [&](const std::string &sounds) {
        const int most = limit(heard, entry, sounds.size());
        const int far = most < 0 ? most + 1 : Phonetics::distance(heard.sounds, sounds, most);
        if (far <= most && isNearlySpelled(heard, wanted.letters, far <= SameSound)) {
            const double each = double(far) / double(sounds.size());
            nearest = nearest < 0 ? each : std::min(nearest, each);
        }
    };
    std::ranges::for_each(wanted.sounds, consider);
    if (!heard.isKnown) {
        std::ranges::for_each(wanted.foreignSounds, consider);
    }
    return nearest;
}

/// An entry of several words wants each of them: of two people called Nadezhda one is Petrova.
bool hasEveryWord(Run run, const VocabularyEntry &entry)
{
    return std::ranges::equal(run, entry.words, [&](const HeardWord &word, const SpokenWord &wanted) {
        return word.stem == wanted.letters
            || (word.kind != WordKind::ordinary && distance(heard(Run(&word, 1)), entry, wanted) >= 0);
    });
}

} // namespace

std::optional<SoundMatch> soundMatch(const VocabularyIndex &index, const std::vector<HeardWord> &words,
                                     std::size_t first, std::size_t count)
{
    const Run run(&words[first], count);
    Heard what = heard(run);
    if (count == 1 && (what.hasOrdinary || run.front().isAcronym)) {
        return std::nullopt;
    }
    std::optional<SoundMatch> best;
    for (const VocabularyEntry *entry : index.soundingLike(what.sounds)) {
        what.isPartedOtherwise = entry->words.size() > 1 && entry->words.size() != count;
        const double far = distance(what, *entry, entry->whole);
        if (far < 0 || (best && best->distance <= far)) {
            continue;
        }
        if (entry->words.size() == 1 || entry->words.size() != count || hasEveryWord(run, *entry)) {
            best = SoundMatch{entry, far};
        }
    }
    return best;
}

} // namespace vesk
