#pragma once

#include <QStringView>

#include <string>
#include <string_view>
#include <vector>

/// Spellings reduced to what can be compared: a to z and digits. Pure functions, for any thread.
namespace vesk::Letters {

/// Small letters without accents; "ß" is "ss", "ø" is "o". Signs vanish. Empty when the text has a letter
/// that is none of Latin.
std::string folded(QStringView text);

/// As `folded`, but German and Nordic letters are written out ("Müller" is "mueller") and Cyrillic is
/// transliterated. Empty when it has another script.
std::string writtenOut(QStringView text);

/// As `writtenOut`, but accented letters become what an English reader would write for their sound:
/// "Škoda" is "shkoda".
std::string respelled(QStringView text);

/// What two spellings of one word have in common in any script: `folded`, or else the letters without case.
std::string key(QStringView text);

/// Whether any letter is Cyrillic.
bool isCyrillic(QStringView text);

/// Where a reader sees parts: "PulseAudio" is Pulse Audio, "QCoro" is Q Coro, "PostgreSQL" is Postgre SQL.
/// A blank, a hyphen and a change between letters and digits part too.
std::vector<QString> parts(QStringView text);

/// How many letters must be changed, added or left out to make one of the other.
std::size_t editDistance(std::string_view one, std::string_view other);

} // namespace vesk::Letters
