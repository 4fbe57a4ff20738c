#pragma once

#include <string_view>

namespace vesk {

/// What an English reader takes a word for. All functions want letters as `Letters::folded` makes them and
/// are safe on any thread.
enum class WordKind {
    unknown,  ///< in no list: a name, a term, or what a recogniser made of one
    name,     ///< known as a name only
    ordinary, ///< a dictionary's word, or a regular form of one
};

WordKind wordKind(std::string_view word);

/// Ordinary words that are people's names too: "mark", "bill", "dawn".
bool isAlsoName(std::string_view word);

/// Articles, pronouns, prepositions, small numbers: they stand beside anything, so that "red is" says nothing
/// about an entry "Redis".
bool isSmallWord(std::string_view word);

} // namespace vesk
