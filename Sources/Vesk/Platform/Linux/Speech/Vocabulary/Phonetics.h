#pragma once

#include <string>
#include <string_view>

/// How spellings sound, coarsely, one character a sound: the consonants p b t d k g f v T(hin) s z S(hip)
/// Z (vision) C(hip) J(am) m n l r w y h and five vowels. Coarse on purpose: English spelling does not tell
/// vowels well, and the distance forgives what it does not tell. Pure functions, for any thread.
namespace vesk::Phonetics {

/// A word of a to z as an English reader says it. Words without a vowel are said letter by letter.
std::string english(std::string_view word);

/// The same word as most of the continent says it: j as in "ja", w as v, sz, cz and rz as in Polish,
/// a final e that is heard.
std::string continental(std::string_view word);

/// Whether it is a word at all and not letters that are said one by one.
bool isPronounceable(std::string_view word);

/// The names of the letters: "ql" is "kyuel".
std::string letterNames(std::string_view word);

/// The letter that a word is the name of ("queue" is q), or 0.
char letterNamed(std::string_view word);

/// How far two rows of sounds are from each other: hundredths of one wholly different consonant; less for
/// consonants that are mistaken for each other, for vowels, and for r, h, w, y, which come and go. Gives up
/// beyond `limit` and returns more than it.
int distance(std::string_view one, std::string_view other, int limit);

/// The consonants by where they are made, voiced or not: what survives a mis-hearing.
std::string skeleton(std::string_view sounds);

} // namespace vesk::Phonetics
