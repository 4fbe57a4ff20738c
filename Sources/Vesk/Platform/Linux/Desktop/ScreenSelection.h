#pragma once

#include "Platform/Linux/X11/XcbConnection.h"

namespace vesk {

/// The selection by which a service of one screen is found, from the part of its name before the number.
xcb_atom_t screenSelection(XcbConnection &connection, const QByteArray &prefix);

/// XCB_NONE when nobody has it.
xcb_window_t selectionOwner(XcbConnection &connection, xcb_atom_t selection);

} // namespace vesk
