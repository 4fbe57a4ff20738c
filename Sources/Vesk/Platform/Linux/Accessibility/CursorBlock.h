#pragma once

#include "Platform/Linux/Accessibility/FieldFacts.h"

namespace vesk {

/// The element whose text the cursor stands in. In an editable part of a page every paragraph is an element
/// of its own, and the text of the whole has only a placeholder for each; everywhere else it is the field
/// itself.
Task<atspi::Reference> blockAtCursor(AtspiSessionPointer session, FieldFacts facts, Patience patience);

} // namespace vesk
