#pragma once

#include "Platform/Linux/Speech/Vocabulary/VocabularyEntry.h"

#include <string_view>
#include <unordered_map>

namespace vesk {

/// A vocabulary, found by letters or by sounds. Fixed once made; any number of threads may ask.
class VocabularyIndex {
public:
    explicit VocabularyIndex(std::vector<VocabularyEntry> entries);

    /// No entry would ever change anything.
    bool isEmpty() const;

    /// The longest run of words that one entry may stand for letter by letter: "h t t p s" are five.
    std::size_t longestRun() const { return m_longestRun; }

    /// The first entry that has the key, or nullptr.
    const VocabularyEntry *spelled(const std::string &key) const;

    /// Every entry whose consonants, by where they are made, differ from those of the sounds in one place at
    /// most, once each.
    std::vector<const VocabularyEntry *> soundingLike(std::string_view sounds) const;

private:
    void addSounds(const std::vector<std::string> &ways, std::size_t entry);

    std::vector<VocabularyEntry> m_entries;
    std::unordered_map<std::string, std::size_t> m_byKey;
    std::unordered_map<std::string, std::vector<std::size_t>> m_bySkeleton;
    std::size_t m_longestRun = 0;
};

} // namespace vesk
