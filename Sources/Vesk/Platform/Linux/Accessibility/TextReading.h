#pragma once

#include "Platform/Linux/Accessibility/FieldFacts.h"

namespace vesk {

/// What the program counts in. The bus means code points, but some count in the units of their strings.
TextUnit unitOf(const FieldFacts &facts);

/// The text from start to end, which are places within it and not the same. Only for elements whose text may
/// be asked for.
Task<std::optional<QString>> readText(AtspiSessionPointer session, FieldFacts facts, Patience patience,
                                      int start, int end);

} // namespace vesk
