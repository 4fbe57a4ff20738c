#pragma once

#include "Platform/Accessibility.h"

#include <QString>

#include <optional>

/// Chromium 156 converts the ends of a selection from UTF-16 units to code points twice, so that every emoji
/// before an end moves it to the left by one. The cursor, which is one of the two ends, is converted once.
namespace vesk::SelectionRepair {

/// The selection that was meant by the reported one, which does not end at the cursor. `between` is the text
/// at the reported place. Nothing when no selection fits. Where more emoji stand before a selection than it
/// is long, the cursor is taken for its end.
std::optional<TextRange> repaired(TextRange reported, qint64 caret, const QString &between);

} // namespace vesk::SelectionRepair
