#pragma once

#include <QString>

#include <optional>
#include <string>
#include <vector>

namespace vesk {

/// A spelling without case and accents, and the ways it may be said.
struct SpokenWord {
    std::string letters;
    std::vector<std::string> sounds;        ///< as an English reader says it
    std::vector<std::string> foreignSounds; ///< as others do
};

/// One of a person's words and everything it is compared by.
struct VocabularyEntry {
    QString written;               ///< as the person spelled it
    std::vector<std::string> keys; ///< letters that are this entry without any doubt
    SpokenWord whole;              ///< run together; without sounds only the keys count
    std::vector<SpokenWord> words; ///< as parted by blanks
    std::size_t partCount = 1;     ///< how many parts a reader sees in the spelling
    bool isOrdinary = false;       ///< stays as it was heard: "Will" and "Rust" are words as well
    bool hasLetterNames = false;   ///< some part is said letter by letter
    bool isOneToken = false;       ///< too short to be put together from several words
    bool isAllSmall = false;       ///< has no capital
    bool isOtherScript = false;    ///< not Latin, while the recogniser writes Latin

    /// Nothing for an entry with signs that are said in a way nobody can guess: "C++", "AT&T".
    static std::optional<VocabularyEntry> make(const QString &text);
};

} // namespace vesk
