#pragma once

#include "Platform/Linux/Speech/Vocabulary/VocabularyMatch.h"

#include <optional>

namespace vesk {

/// The longest run that may stand for an entry by its sound.
inline constexpr std::size_t LongestSoundRun = 4;

struct SoundMatch {
    const VocabularyEntry *entry = nullptr;
    double distance = 0; ///< a sound, in hundredths
};

/// The entry that sounds most like `count` words from `first` on, if one does well enough.
std::optional<SoundMatch> soundMatch(const VocabularyIndex &index, const std::vector<HeardWord> &words,
                                     std::size_t first, std::size_t count);

} // namespace vesk
