#pragma once

#include <QString>

#include <vector>

/// Texts made comparable: two that differ in case only, or in how their accents are put together, fold to the
/// same text. Unicode's canonical caseless matching with full folding ("Straße" and "STRASSE", "İ" and "i̇").
/// Pure functions; any thread.
namespace vesk::CaseFolding {

/// Appends the folded form of whole user-perceived characters. Folding them one by one or together is the
/// same.
void append(QStringView characters, QString &into);

/// The same for a text of which each UTF-16 unit is a character. Appends to `starts` where the folded form of
/// each begins in `into`.
void appendUnits(QStringView units, QString &into, std::vector<qsizetype> &starts);

QString folded(QStringView text);

} // namespace vesk::CaseFolding
