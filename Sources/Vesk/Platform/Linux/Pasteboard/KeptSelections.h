#pragma once

#include "Platform/Linux/Pasteboard/X11Selections.h"

namespace vesk {

/// What one program hands to another that is to go on offering it: names instead of numbers, so that it may
/// pass through a file.
namespace KeptSelections {

/// Everything that these selections offer by us.
QByteArray packed(X11Selections &selections);

/// Takes it all over. False when it cannot be read, or when somebody else has copied something since and
/// there is nothing left to keep.
bool takeOver(X11Selections &selections, const QByteArray &packed);

} // namespace KeptSelections

} // namespace vesk
