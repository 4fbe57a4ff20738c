#pragma once

#include "Foundation/FocusContext.h"

namespace vesk::Rewrite {

/// The longest selection that a command may rewrite, in the context's units. The capture is cut there.
inline constexpr int SelectionLimit = 6000;

/// The selection that a command rewrites, as it stands, blanks at its edges included. Throws VeskError:
/// noSelection without a context or with nothing but white space selected, secureField in a password field,
/// selectionTooLong when the capture had to cut it.
QString selection(const std::optional<FocusContext> &context);

} // namespace vesk::Rewrite
