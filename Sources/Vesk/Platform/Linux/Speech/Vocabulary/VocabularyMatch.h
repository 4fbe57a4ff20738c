#pragma once

#include "Platform/Linux/Speech/Vocabulary/HeardWord.h"
#include "Platform/Linux/Speech/Vocabulary/VocabularyIndex.h"

#include <QString>

namespace vesk {

/// A run of heard words that stands for an entry.
struct VocabularyMatch {
    std::size_t first = 0;
    std::size_t count = 0;
    const VocabularyEntry *entry = nullptr;
    bool coversEnding = false; ///< the 's of the last word belongs to the entry ("McDonald's")
    bool isPlural = false;     ///< the last word has an s more than the entry
};

/// Matches in the order of the text, none over another. Those by letters come first and keep those by sound
/// away; among these the closest wins, then the longest. The entries belong to the index.
std::vector<VocabularyMatch> vocabularyMatches(const VocabularyIndex &index,
                                               const std::vector<HeardWord> &words);

} // namespace vesk
