#pragma once

#include "Platform/Linux/Pasteboard/X11Selections.h"

#include <map>

namespace vesk {

/// What one program hands to another that is to go on offering it: names instead of numbers, so that it may
/// pass through a file.
namespace KeptSelections {

using Contents = std::map<xcb_atom_t, SelectionFormats>; ///< by selection

/// Everything that these selections offer by us.
Contents offered(const X11Selections &selections);

QByteArray packed(XcbConnection &connection, const Contents &contents);

/// Offers what may be had of it. False when it cannot be read, or when somebody else has copied something
/// since and there is nothing left to keep.
bool takeOver(X11Selections &selections, const QByteArray &packed,
              const std::function<bool(xcb_atom_t)> &mayBeHad = {});

} // namespace KeptSelections

} // namespace vesk
