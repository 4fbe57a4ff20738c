#pragma once

#include <QByteArray>

#include <optional>

/// The escapes inside JSON's strings. Pure functions.
namespace vesk::Json {

/// How long the escape is that the text begins with, both halves of a surrogate pair together: nought when
/// the text ends before it does, nothing when it is none.
std::optional<qsizetype> escapeLength(QByteArrayView text);

/// Appends, in UTF-8, what a string's inside means whose escapes are all right.
void unescape(QByteArrayView raw, QByteArray &into);

} // namespace vesk::Json
