#pragma once

#include <QStringView>

#include <vector>

/// User-perceived characters: what a person counts as one, such as a letter with its accents or an emoji
/// family. Pure functions.
namespace vesk::Graphemes {

/// Whether each UTF-16 unit of the text is a character of its own. True for most Latin, Greek and Cyrillic
/// text, and may be false for a text of which it is true: it is a short cut, and a cheap one.
bool areUnits(QStringView text);

qsizetype count(QStringView text);

/// Replaces `into` with where each character begins, in UTF-16 units, and the text's end.
void findStarts(QStringView text, std::vector<qsizetype> &into);

} // namespace vesk::Graphemes
