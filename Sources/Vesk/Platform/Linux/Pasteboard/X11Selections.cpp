#include "Platform/Linux/Pasteboard/X11Selections.h"

#include <utility>
#include <xcb/xfixes.h>

namespace vesk {

namespace {

constexpr std::chrono::seconds ServerLimit(2); // the X server itself answers at once, or is not well

} // namespace

X11Selections::X11Selections()
    : m_server(m_connection)
    , m_reader(m_connection, [this](const xcb_generic_event_t &event) { handle(event); })
{
    if (!m_connection.isUsable() || !m_connection.hasExtension("XFIXES")) {
        return;
    }
    m_clipboard = m_connection.atom("CLIPBOARD");
    m_window = m_connection.makeWindow(XCB_EVENT_MASK_PROPERTY_CHANGE);
    m_isUsable = watchOwners();
}

bool X11Selections::watchOwners()
{
    xcb_connection_t *connection = m_connection.get();
    const XcbPointer<xcb_xfixes_query_version_reply_t> version(
        xcb_xfixes_query_version_reply(connection, xcb_xfixes_query_version(connection, 1, 0), nullptr));
    const xcb_query_extension_reply_t *extension = xcb_get_extension_data(connection, &xcb_xfixes_id);
    if (!version || extension == nullptr) {
        return false;
    }
    m_ownerEvent = static_cast<std::uint8_t>(extension->first_event + XCB_XFIXES_SELECTION_NOTIFY);
    for (const xcb_atom_t selection : {clipboard(), primary()}) {
        xcb_xfixes_select_selection_input(connection, m_connection.root(), selection,
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER
                                              | XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY
                                              | XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    }
    m_connection.flush();
    return true;
}

SelectionContent X11Selections::read(xcb_atom_t selection, const std::function<bool()> &isWanted)
{
    handlePending();
    if (const SelectionFormats *mine = own(selection)) {
        return {*mine, true};
    }
    return m_reader.read(selection, serverTime(), isWanted);
}

std::optional<qint64> X11Selections::write(xcb_atom_t selection, SelectionFormats formats)
{
    xcb_connection_t *connection = m_connection.get();
    const xcb_timestamp_t now = serverTime();
    const bool isEmpty = formats.empty();
    const xcb_window_t owner = isEmpty ? static_cast<xcb_window_t>(XCB_NONE) : m_window;
    if (isEmpty) {
        m_server.withdraw(selection);
    } else {
        m_server.offer(selection, std::move(formats), now);
    }
    xcb_set_selection_owner(connection, owner, selection, now);

    // The event of our own change comes before the answer to this question; whatever comes later was somebody
    // else's, and is not part of the count that is returned.
    const XcbPointer<xcb_get_selection_owner_reply_t> reply(
        xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, selection), nullptr));
    std::optional<qint64> count;
    while (const XcbConnection::Event event{xcb_poll_for_queued_event(connection)}) {
        handle(*event);
        const auto &change = eventAs<xcb_xfixes_selection_notify_event_t>(*event);
        if (eventType(*event) == m_ownerEvent && change.selection == selection && change.owner == owner
            && change.selection_timestamp == now) {
            count = changeCount(selection);
        }
    }
    if (!count && isEmpty && reply) {
        count = changeCount(selection); // nobody owned it before either
    }
    if (!count && !isEmpty) {
        m_server.withdraw(selection);
    }
    return count;
}

xcb_window_t X11Selections::ownerOf(xcb_atom_t selection)
{
    const XcbPointer<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
        m_connection.get(), xcb_get_selection_owner(m_connection.get(), selection), nullptr));
    return reply ? reply->owner : static_cast<xcb_window_t>(XCB_NONE);
}

qint64 X11Selections::changeCount(xcb_atom_t selection) const
{
    return selection == m_clipboard ? m_clipboardChanges : m_primaryChanges;
}

void X11Selections::handlePending()
{
    m_connection.dispatchPending([this](const xcb_generic_event_t &event) { handle(event); });
}

void X11Selections::handle(const xcb_generic_event_t &event)
{
    if (m_ownerEvent != 0 && eventType(event) == m_ownerEvent) {
        const auto &change = eventAs<xcb_xfixes_selection_notify_event_t>(event);
        ++(change.selection == m_clipboard ? m_clipboardChanges : m_primaryChanges);
        if (change.owner != m_window) {
            onTaken(change.selection);
        }
    } else {
        m_server.handle(event);
    }
}

/// Selections are acquired and asked for at a time: the server tells its own when a property changes.
xcb_timestamp_t X11Selections::serverTime()
{
    const xcb_atom_t property = m_connection.atom("VESK_TIME");
    xcb_change_property(m_connection.get(), XCB_PROP_MODE_APPEND, m_window, property, XCB_ATOM_INTEGER, 32, 0,
                        nullptr);
    const auto event =
        m_connection.dispatchUntil([this](const xcb_generic_event_t &other) { handle(other); },
                                   [this, property](const xcb_generic_event_t &e) {
                                       const auto &change = eventAs<xcb_property_notify_event_t>(e);
                                       return eventType(e) == XCB_PROPERTY_NOTIFY && change.window == m_window
                                           && change.atom == property;
                                   },
                                   std::chrono::steady_clock::now() + ServerLimit);
    return event ? eventAs<xcb_property_notify_event_t>(*event).time : XCB_CURRENT_TIME;
}

} // namespace vesk
