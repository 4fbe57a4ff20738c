#include "Platform/Linux/Desktop/ScreenSelection.h"

namespace vesk {

xcb_atom_t screenSelection(XcbConnection &connection, const QByteArray &prefix)
{
    char *host = nullptr;
    int display = 0;
    int screen = 0;
    xcb_parse_display(nullptr, &host, &display, &screen);
    const XcbPointer<char> freed(host);
    return connection.atom(prefix + QByteArray::number(screen));
}

xcb_window_t selectionOwner(XcbConnection &connection, xcb_atom_t selection)
{
    const XcbPointer<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
        connection.get(), xcb_get_selection_owner(connection.get(), selection), nullptr));
    return reply ? reply->owner : XCB_NONE;
}

} // namespace vesk
