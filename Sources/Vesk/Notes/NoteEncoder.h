#pragma once

#include "Notes/Note.h"

#include <optional>

namespace vesk {

/// The note as its file holds it: pretty-printed, members sorted, slashes escaped; read back, it is equal to
/// the last bit, but for half a surrogate pair, which becomes U+FFFD. Nothing when it holds a number that
/// JSON does not know. Any thread.
std::optional<QByteArray> encodeNote(const Note &note);

} // namespace vesk
