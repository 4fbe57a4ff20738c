#include "Platform/Linux/Desktop/X11Compositing.h"

#include "Platform/Linux/Desktop/ScreenSelection.h"

namespace vesk {

bool X11Compositing::isActive() const
{
    if (!m_connection.isUsable()) {
        return false;
    }
    m_connection.dispatchPending(
        [](const xcb_generic_event_t &) {}); // some events come unasked, and would pile up
    return selectionOwner(m_connection, screenSelection(m_connection, "_NET_WM_CM_S")) != XCB_NONE;
}

} // namespace vesk
