#include "Platform/Linux/Speech/Vocabulary/Phonetics.h"

#include <algorithm>
#include <array>
#include <span>

namespace vesk::Phonetics {

namespace {

using namespace std::string_view_literals;

/// What must stand beside the letters of a rule.
enum class Beside { any, edge, vowel, consonant, notVowel, frontVowel };

struct Rule {
    std::string_view letters;
    std::string_view sounds;
    Beside before = Beside::any;
    Beside after = Beside::any;
};

using enum Beside;

/// The first rule that fits wins, so longer ones stand first. Letters that no rule names stand for
/// themselves.
constexpr std::array EnglishRules{
    Rule{"augh", "o"},
    Rule{"eigh", "e"},
    Rule{"ough", "o"},
    Rule{"tsch", "C"},
    Rule{"eau", "o"},
    Rule{"igh", "i"},
    Rule{"sch", "S"},
    Rule{"tch", "C"},
    Rule{"tio", "So"},
    Rule{"que", "k", any, edge},
    Rule{"gue", "g", any, edge},
    Rule{"chr", "kr"},
    Rule{"chl", "kl"},
    Rule{"dge", "J"},
    Rule{"cia", "Sa", vowel},
    Rule{"cio", "So", vowel},
    Rule{"ai", "e"},
    Rule{"ay", "e"},
    Rule{"ae", "e"},
    Rule{"au", "o"},
    Rule{"aw", "o", any, notVowel},
    Rule{"ah", "a", any, notVowel},
    Rule{"ch", "C"},
    Rule{"ck", "k"},
    Rule{"cc", "ks", any, frontVowel},
    Rule{"cz", "C"},
    Rule{"dj", "J"},
    Rule{"ee", "i"},
    Rule{"ea", "i"},
    Rule{"ei", "e"},
    Rule{"ew", "u", any, notVowel},
    Rule{"eu", "u"},
    Rule{"ey", "i", any, edge},
    Rule{"ey", "e", any, notVowel},
    Rule{"ie", "i"},
    Rule{"oo", "u"},
    Rule{"ou", "u"},
    Rule{"ow", "o", any, notVowel},
    Rule{"oa", "o"},
    Rule{"oe", "o", any, edge},
    Rule{"oy", "oi", any, notVowel},
    Rule{"ue", "u", any, edge},
    Rule{"ui", "u"},
    Rule{"gh", "g", edge},
    Rule{"gh", "", any, notVowel},
    Rule{"gh", "g"},
    Rule{"gn", "n", edge},
    Rule{"gn", "n", any, edge},
    Rule{"gg", "g"},
    Rule{"gu", "g", any, frontVowel},
    Rule{"kn", "n", edge},
    Rule{"kh", "k"},
    Rule{"mb", "m", any, edge},
    Rule{"ph", "f"},
    Rule{"ps", "s", edge},
    Rule{"pn", "n", edge},
    Rule{"pt", "t", edge},
    Rule{"qu", "kw", any, vowel},
    Rule{"rh", "r"},
    Rule{"sh", "S"},
    Rule{"sc", "s", any, frontVowel},
    Rule{"th", "T"},
    Rule{"tz", "ts"},
    Rule{"wr", "r", edge},
    Rule{"wh", "w"},
    Rule{"zh", "Z"},
    Rule{"c", "s", any, frontVowel},
    Rule{"c", "k"},
    Rule{"g", "J", any, frontVowel},
    Rule{"h", "", vowel, notVowel},
    Rule{"j", "J"},
    Rule{"q", "k"},
    Rule{"w", "", vowel, notVowel},
    Rule{"x", "z", edge},
    Rule{"x", "ks"},
    Rule{"y", "y", edge, vowel},
    Rule{"y", "y", vowel, vowel},
    Rule{"y", "i"},
};

/// Asked before the English ones.
constexpr std::array ContinentalRules{
    Rule{"szcz", "SC"},
    Rule{"ij", "i", any, consonant},
    Rule{"rz", "Z"},
    Rule{"wh", "w"},
    Rule{"sz", "S"},
    Rule{"zz", "ts"},
    Rule{"zh", "Z"},
    Rule{"qu", "k", any, frontVowel},
    Rule{"ei", "i"},
    Rule{"eu", "oi"},
    Rule{"au", "au"},
    Rule{"ch", "k"},
    Rule{"c", "ts", any, frontVowel},
    Rule{"g", "g"},
    Rule{"j", "y"},
    Rule{"w", "v"},
    Rule{"x", "S", edge},
    Rule{"z", "ts", any, vowel},
};

bool isVowelLetter(char letter) { return "aeiouy"sv.find(letter) != std::string_view::npos; }

bool holds(Beside wanted, std::string_view word, std::size_t position)
{
    const bool isEdge = position >= word.size(); // before the first letter it wraps around
    switch (wanted) {
    case any: return true;
    case edge: return isEdge;
    case vowel: return !isEdge && isVowelLetter(word[position]);
    case consonant: return !isEdge && !isVowelLetter(word[position]);
    case notVowel: return isEdge || !isVowelLetter(word[position]);
    case frontVowel: return !isEdge && "eiy"sv.find(word[position]) != std::string_view::npos;
    }
    return false;
}

const Rule *ruleAt(std::span<const Rule> rules, std::string_view word, std::size_t position)
{
    const auto found = std::ranges::find_if(rules, [&](const Rule &rule) {
        return rule.letters.front() == word[position] && word.substr(position).starts_with(rule.letters)
            && holds(rule.before, word, position - 1)
            && holds(rule.after, word, position + rule.letters.size());
    });
    return found == rules.end() ? nullptr : &*found;
}

/// Doubled sounds are one.
void append(std::string &sounds, std::string_view more)
{
    for (const char sound : more) {
        if (sounds.empty() || sounds.back() != sound) {
            sounds += sound;
        }
    }
}

/// "tale" has one vowel that is heard, "the" would have none without its e.
bool endsInSilentE(std::string_view word)
{
    return word.size() > 2 && word.ends_with('e') && !isVowelLetter(word[word.size() - 2])
        && std::ranges::any_of(word.substr(0, word.size() - 2), isVowelLetter);
}

std::string spoken(std::string_view word, std::span<const Rule> firstRules, std::size_t end)
{
    std::string sounds;
    for (std::size_t i = 0; i < end;) {
        const Rule *rule = ruleAt(firstRules, word, i);
        if (!rule) {
            rule = ruleAt(EnglishRules, word, i);
        }
        append(sounds, rule ? rule->sounds : word.substr(i, 1));
        i += rule ? rule->letters.size() : 1;
    }
    return sounds;
}

struct Name {
    std::string_view word;
    char letter;
};

constexpr std::array LetterWords{
    Name{"aitch", 'h'}, Name{"are", 'r'}, Name{"bee", 'b'}, Name{"cue", 'q'},   Name{"dee", 'd'},
    Name{"eff", 'f'},   Name{"ell", 'l'}, Name{"em", 'm'},  Name{"en", 'n'},    Name{"ess", 's'},
    Name{"ex", 'x'},    Name{"eye", 'i'}, Name{"gee", 'g'}, Name{"jay", 'j'},   Name{"kay", 'k'},
    Name{"oh", 'o'},    Name{"pea", 'p'}, Name{"pee", 'p'}, Name{"queue", 'q'}, Name{"sea", 'c'},
    Name{"see", 'c'},   Name{"tea", 't'}, Name{"tee", 't'}, Name{"vee", 'v'},   Name{"why", 'y'},
    Name{"you", 'u'},   Name{"zed", 'z'}, Name{"zee", 'z'},
};

constexpr std::array NamesOfLetters{"e"sv,  "bi"sv,      "si"sv,  "di"sv, "i"sv,  "ef"sv, "Ji"sv,
                                    "eC"sv, "i"sv,       "Je"sv,  "ke"sv, "el"sv, "em"sv, "en"sv,
                                    "o"sv,  "pi"sv,      "kyu"sv, "ar"sv, "es"sv, "ti"sv, "yu"sv,
                                    "vi"sv, "dabelyu"sv, "eks"sv, "wi"sv, "zi"sv};

} // namespace

std::string english(std::string_view word)
{
    if (word == "mc") {
        return "mak";
    }
    if (const char letter = letterNamed(word)) {
        return letterNames(std::string_view(&letter, 1));
    }
    if (!isPronounceable(word)) {
        return letterNames(word);
    }
    // The silent e is not said, and still softens a c or g before it.
    return spoken(word, {}, endsInSilentE(word) ? word.size() - 1 : word.size());
}

bool isPronounceable(std::string_view word)
{
    return word.size() > 1 && std::ranges::any_of(word, isVowelLetter);
}

std::string continental(std::string_view word) { return spoken(word, ContinentalRules, word.size()); }

std::string letterNames(std::string_view word)
{
    std::string sounds;
    for (const char letter : word) {
        if (letter >= 'a' && letter <= 'z') {
            append(sounds, NamesOfLetters.at(std::size_t(letter - 'a')));
        }
    }
    return sounds;
}

char letterNamed(std::string_view word)
{
    const auto found = std::ranges::find(LetterWords, word, &Name::word);
    return found == LetterWords.end() ? '\0' : found->letter;
}

} // namespace vesk::Phonetics
