#include "Platform/Linux/Speech/Vocabulary/VocabularyEntry.h"

#include "Platform/Linux/Speech/Vocabulary/Letters.h"
#include "Platform/Linux/Speech/Vocabulary/Phonetics.h"
#include "Platform/Linux/Speech/Vocabulary/WordKind.h"

#include <QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vesk {

namespace {

constexpr std::size_t ShortestForSounds = 3;

/// Whether every sign in an entry may be left out when it is said.
bool isSayable(QStringView text)
{
    return std::ranges::all_of(text, [](QChar c) {
        return c.isLetterOrNumber() || c.isMark() || c.isSpace() || u"-.'’‐"_s.contains(c);
    });
}

void addOnce(std::vector<std::string> &list, std::string text)
{
    if (!text.empty() && std::ranges::find(list, text) == list.end()) {
        list.push_back(std::move(text));
    }
}

bool hasDigit(std::string_view letters)
{
    return std::ranges::any_of(letters, [](char c) { return c >= '0' && c <= '9'; });
}

/// Capitals are read by their names, unless there are so many that they are a word that is shouted.
bool isAcronym(const QString &part)
{
    constexpr qsizetype Longest = 4;
    return part.size() <= Longest && part == part.toUpper();
}

/// Nobody says "QCoro" as one word, while "Grafql" was written for GraphQL, and "YAML" is a word.
bool beginsWithLetterNames(const std::vector<QString> &parts)
{
    return parts.size() > 1 && isAcronym(parts.front());
}

SpokenWord spokenWord(const QString &text)
{
    const std::vector<QString> parts = Letters::parts(text);
    SpokenWord word;
    word.letters = Letters::isCyrillic(text) ? Letters::writtenOut(text) : Letters::folded(text);
    if (!Phonetics::isPronounceable(word.letters)) {
        return word; // one letter more or less is another abbreviation: "zsh", "csh"
    }
    if (parts.size() > 1) {
        std::string byParts;
        for (const QString &part : parts) {
            const std::string letters = Letters::respelled(part);
            byParts += isAcronym(part) ? Phonetics::letterNames(letters) : Phonetics::english(letters);
        }
        addOnce(word.sounds, std::move(byParts));
    }
    if (!beginsWithLetterNames(parts)) {
        const std::string respelled = Letters::respelled(text);
        addOnce(word.sounds, Phonetics::english(word.letters));
        addOnce(word.sounds, Phonetics::english(respelled));
        addOnce(word.foreignSounds, Phonetics::continental(respelled));
    }
    return word;
}

/// All first ways of saying the words together, all second ones, and so on; none when a word has none.
std::vector<std::string> joinedSounds(const std::vector<SpokenWord> &words, bool withForeign)
{
    std::vector<std::string> joined;
    for (std::size_t i = 0;; ++i) {
        std::string sounds;
        bool isNew = false;
        for (const SpokenWord &word : words) {
            if (word.sounds.empty()) {
                return {};
            }
            const auto &ways = withForeign && !word.foreignSounds.empty() ? word.foreignSounds : word.sounds;
            isNew = isNew || i < ways.size();
            sounds += ways[std::min(i, ways.size() - 1)];
        }
        if (!isNew) {
            return joined;
        }
        addOnce(joined, std::move(sounds));
    }
}

SpokenWord runTogether(const std::vector<SpokenWord> &words)
{
    SpokenWord whole;
    for (const SpokenWord &word : words) {
        whole.letters += word.letters;
    }
    whole.sounds = joinedSounds(words, false);
    whole.foreignSounds = joinedSounds(words, true);
    return whole;
}

bool areOrdinary(const std::vector<SpokenWord> &words)
{
    if (words.size() == 1) {
        return wordKind(words.front().letters) == WordKind::ordinary;
    }
    return std::ranges::all_of(words, isSmallWord, &SpokenWord::letters);
}

/// A word in another script takes the place of an English one only where that is nothing in English:
/// "Надежда" for "nadezhda", but neither "Вера" for "Vera" nor "год" for "god".
bool isNothingInEnglish(std::string_view letters)
{
    constexpr std::size_t Shortest = 4;
    return letters.size() >= Shortest && wordKind(letters) == WordKind::unknown;
}

} // namespace

std::optional<VocabularyEntry> VocabularyEntry::make(const QString &text)
{
    VocabularyEntry entry;
    entry.written = text.simplified();
    if (entry.written.isEmpty() || !isSayable(entry.written)) {
        return std::nullopt;
    }
    for (const QString &word : entry.written.split(u' ')) {
        entry.words.push_back(spokenWord(word));
    }
    entry.whole = runTogether(entry.words);
    const std::vector<QString> parts = Letters::parts(entry.written);
    entry.partCount = parts.size();
    entry.hasLetterNames = std::ranges::any_of(parts, isAcronym);
    entry.isAllSmall = entry.written == entry.written.toLower();
    entry.isOneToken = entry.whole.letters.size() < ShortestForSounds;
    entry.isOtherScript = Letters::folded(entry.written).empty();
    // "TypeScript" is a word of the dictionary too, but nobody capitalises that one in the middle.
    entry.isOrdinary =
        !entry.isOtherScript && entry.partCount == entry.words.size() && areOrdinary(entry.words);

    addOnce(entry.keys, Letters::key(entry.written));
    const bool isOnlyItself = entry.isOtherScript && !isNothingInEnglish(entry.whole.letters);
    if (!isOnlyItself) {
        addOnce(entry.keys, entry.whole.letters);
        addOnce(entry.keys, Letters::writtenOut(entry.written));
    }
    if (isOnlyItself || entry.isOrdinary || entry.isOneToken || hasDigit(entry.whole.letters)) {
        entry.whole.sounds.clear();
        entry.whole.foreignSounds.clear();
    }
    return entry;
}

} // namespace vesk
