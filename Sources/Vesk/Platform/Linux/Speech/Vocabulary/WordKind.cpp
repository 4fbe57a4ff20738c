#include "Platform/Linux/Speech/Vocabulary/WordKind.h"

#include "Platform/Linux/Speech/Vocabulary/WordLists.h"

#include <algorithm>
#include <array>
#include <string>

namespace vesk {

namespace {

using namespace std::string_view_literals;

constexpr std::array SmallWords{
    "a"sv,     "about"sv, "all"sv,   "am"sv,    "an"sv,   "and"sv,   "any"sv,  "are"sv,  "as"sv,    "at"sv,
    "be"sv,    "been"sv,  "but"sv,   "by"sv,    "can"sv,  "could"sv, "did"sv,  "do"sv,   "does"sv,  "down"sv,
    "eight"sv, "five"sv,  "for"sv,   "four"sv,  "from"sv, "had"sv,   "has"sv,  "have"sv, "he"sv,    "her"sv,
    "him"sv,   "his"sv,   "i"sv,     "if"sv,    "in"sv,   "into"sv,  "is"sv,   "it"sv,   "its"sv,   "me"sv,
    "my"sv,    "nine"sv,  "no"sv,    "nor"sv,   "not"sv,  "of"sv,    "off"sv,  "on"sv,   "one"sv,   "or"sv,
    "our"sv,   "out"sv,   "over"sv,  "seven"sv, "she"sv,  "six"sv,   "so"sv,   "some"sv, "ten"sv,   "than"sv,
    "that"sv,  "the"sv,   "their"sv, "them"sv,  "then"sv, "these"sv, "they"sv, "this"sv, "those"sv, "three"sv,
    "to"sv,    "two"sv,   "up"sv,    "us"sv,    "was"sv,  "we"sv,    "were"sv, "what"sv, "when"sv,  "who"sv,
    "will"sv,  "with"sv,  "would"sv, "your"sv};
static_assert(std::ranges::is_sorted(SmallWords));

/// Looks a word up in one of the lists where they lie: no table has to be built when the program starts.
bool contains(std::string_view list, std::string_view word)
{
    std::size_t first = 0;
    std::size_t last = list.size();
    while (first < last) {
        const std::size_t middle = first + (last - first) / 2;
        const std::size_t before = middle == 0 ? std::string_view::npos : list.rfind('\n', middle - 1);
        const std::size_t begin = before == std::string_view::npos ? 0 : before + 1;
        const std::size_t end = list.find('\n', middle);
        const int order = list.substr(begin, end - begin).compare(word);
        if (order == 0) {
            return true;
        }
        if (order < 0) {
            first = end + 1;
        } else {
            last = begin;
        }
    }
    return false;
}

struct Ending {
    std::string_view ending;
    std::string_view replacement;
};

/// Regular forms that the lists leave out; undone, one of them must leave a listed word of three letters or
/// more.
constexpr std::array Endings{
    Ending{"s", ""},    Ending{"es", ""},    Ending{"ies", "y"}, Ending{"ed", ""},   Ending{"ed", "e"},
    Ending{"ied", "y"}, Ending{"ing", ""},   Ending{"ing", "e"}, Ending{"er", ""},   Ending{"er", "e"},
    Ending{"ers", ""},  Ending{"ers", "e"},  Ending{"ly", ""},   Ending{"ness", ""}, Ending{"less", ""},
    Ending{"able", ""}, Ending{"able", "e"}, Ending{"ity", ""},  Ending{"ity", "e"}, Ending{"ize", ""},
    Ending{"ized", ""}, Ending{"ised", ""},
};
constexpr std::array Beginnings{"un"sv, "re"sv, "non"sv, "pre"sv, "sub"sv, "over"sv, "mis"sv, "out"sv};
constexpr std::size_t ShortestStem = 3;

bool isRegularForm(std::string_view word)
{
    for (const Ending &ending : Endings) {
        if (word.size() >= ending.ending.size() + ShortestStem && word.ends_with(ending.ending)) {
            std::string stem(word.substr(0, word.size() - ending.ending.size()));
            stem += ending.replacement;
            if (contains(WordLists::Ordinary, stem)) {
                return true;
            }
        }
    }
    return std::ranges::any_of(Beginnings, [word](std::string_view beginning) {
        return word.size() >= beginning.size() + ShortestStem && word.starts_with(beginning)
            && contains(WordLists::Ordinary, word.substr(beginning.size()));
    });
}

} // namespace

WordKind wordKind(std::string_view word)
{
    if (word.size() == 1) {
        // The lists hold every letter; all but three are names of letters rather than words.
        return "aio"sv.find(word) != std::string_view::npos ? WordKind::ordinary : WordKind::unknown;
    }
    if (contains(WordLists::Ordinary, word)) {
        return WordKind::ordinary;
    }
    if (contains(WordLists::Names, word)) {
        return WordKind::name;
    }
    return isRegularForm(word) ? WordKind::ordinary : WordKind::unknown;
}

bool isAlsoName(std::string_view word) { return contains(WordLists::Names, word); }

bool isSmallWord(std::string_view word) { return std::ranges::binary_search(SmallWords, word); }

} // namespace vesk
