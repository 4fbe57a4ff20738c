#include "Platform/Linux/Speech/Vocabulary/VocabularyIndex.h"

#include "Platform/Linux/Speech/Vocabulary/Phonetics.h"

#include <algorithm>

namespace vesk {

namespace {

constexpr std::size_t LongestSpelledRun = 8;

/// A skeleton and every one with a consonant less. Two skeletons that differ in one place, whether one was
/// exchanged, lost or added, have one of these in common, so that looking up a handful of keys finds all
/// of them in any number of entries. A single consonant says too little to be left out.
std::vector<std::string> neighbours(std::string_view sounds)
{
    constexpr std::size_t ShortestToShorten = 3;
    std::vector<std::string> result{Phonetics::skeleton(sounds)};
    const std::string whole = result.front();
    if (whole.size() >= ShortestToShorten) {
        for (std::size_t i = 0; i < whole.size(); ++i) {
            result.push_back(whole.substr(0, i) + whole.substr(i + 1));
        }
    }
    return result;
}

} // namespace

VocabularyIndex::VocabularyIndex(std::vector<VocabularyEntry> entries)
    : m_entries(std::move(entries))
{
    for (std::size_t i = 0; i < m_entries.size(); ++i) {
        const VocabularyEntry &entry = m_entries[i];
        for (const std::string &key : entry.keys) {
            m_byKey.try_emplace(key, i);
            m_longestRun = std::max(m_longestRun, std::min(key.size(), LongestSpelledRun));
        }
        addSounds(entry.whole.sounds, i);
        addSounds(entry.whole.foreignSounds, i);
    }
}

bool VocabularyIndex::isEmpty() const { return std::ranges::all_of(m_entries, &VocabularyEntry::isOrdinary); }

void VocabularyIndex::addSounds(const std::vector<std::string> &ways, std::size_t entry)
{
    for (const std::string &sounds : ways) {
        for (std::string &skeleton : neighbours(sounds)) {
            std::vector<std::size_t> &same = m_bySkeleton[std::move(skeleton)];
            if (same.empty() || same.back() != entry) {
                same.push_back(entry);
            }
        }
    }
}

const VocabularyEntry *VocabularyIndex::spelled(const std::string &key) const
{
    const auto found = m_byKey.find(key);
    return found == m_byKey.end() ? nullptr : &m_entries[found->second];
}

std::vector<const VocabularyEntry *> VocabularyIndex::soundingLike(std::string_view sounds) const
{
    std::vector<const VocabularyEntry *> result;
    for (const std::string &skeleton : neighbours(sounds)) {
        if (const auto found = m_bySkeleton.find(skeleton); found != m_bySkeleton.end()) {
            for (const std::size_t i : found->second) {
                result.push_back(&m_entries[i]);
            }
        }
    }
    std::ranges::sort(result);
    const auto repeated = std::ranges::unique(result);
    result.erase(repeated.begin(), repeated.end());
    return result;
}

} // namespace vesk
