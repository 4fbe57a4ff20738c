#pragma once

#include "Platform/Linux/Pasteboard/SelectionFormat.h"
#include "Platform/Linux/X11/XcbConnection.h"
#include "Platform/Pasteboard.h"

namespace vesk {

/// What a selection offers for these items. Plain text becomes every form under which programs ask for it,
/// the passing mark also the one that clipboard histories of this system heed; other types keep their names,
/// as a snapshot brought them. A form that stands there twice counts once.
SelectionFormats formatsFor(XcbConnection &connection, const QList<PasteboardItem> &items);

/// A selection is one item in many forms; none when it is empty.
QList<PasteboardItem> itemsFor(XcbConnection &connection, const SelectionFormats &formats);

} // namespace vesk
