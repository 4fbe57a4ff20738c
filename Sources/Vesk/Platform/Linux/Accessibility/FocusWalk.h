#pragma once

#include "Platform/Linux/Accessibility/FieldFacts.h"

namespace vesk {

/// Looks through a window for its focused element, level by level: the last resort, for programs that neither
/// search themselves nor have told yet where the focus is. Ends at the latest when patience does.
Task<std::optional<FieldFacts>> walkToFocused(AtspiSessionPointer session, atspi::Reference window,
                                              Patience patience);

/// The best of several focused elements: an element may call its frame and its inner parts focused as well.
Task<std::optional<FieldFacts>> chooseFocused(AtspiSessionPointer session,
                                              QList<atspi::Reference> deepestFirst, Patience patience);

} // namespace vesk
