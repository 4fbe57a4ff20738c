#pragma once

#include "Platform/Linux/Speech/Vocabulary/VocabularyMatch.h"

#include <optional>

namespace vesk {

/// The longest run from `first` on whose letters are an entry's, blanks and hyphens aside. An ordinary word
/// alone is none; ordinary words together are, unless a small word is among them and the entry is not parted
/// where they are: "pulse audio" is PulseAudio, "red is" is not Redis, "bank of Cyprus" is Bank of Cyprus.
std::optional<VocabularyMatch> spelledMatch(const VocabularyIndex &index, const std::vector<HeardWord> &words,
                                            std::size_t first);

} // namespace vesk
