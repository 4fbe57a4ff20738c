#include "Platform/Linux/X11/XcbConnection.h"

#include <algorithm>
#include <cstring>
#include <poll.h>

namespace vesk {

XcbConnection::XcbConnection()
{
    int screen = 0;
    m_connection = xcb_connect(nullptr, &screen);
    if (!isUsable()) {
        return;
    }
    xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(m_connection));
    for (; screen > 0 && screens.rem > 1; --screen) {
        xcb_screen_next(&screens);
    }
    m_root = screens.data->root;
}

XcbConnection::~XcbConnection() { xcb_disconnect(m_connection); }

bool XcbConnection::isUsable() const { return xcb_connection_has_error(m_connection) == 0; }

bool XcbConnection::hasExtension(const char *name) const
{
    const auto length = static_cast<std::uint16_t>(std::strlen(name));
    const XcbPointer<xcb_query_extension_reply_t> reply(
        xcb_query_extension_reply(m_connection, xcb_query_extension(m_connection, length, name), nullptr));
    return reply && reply->present != 0;
}

xcb_atom_t XcbConnection::atom(const QByteArray &name)
{
    if (const auto known = m_atoms.constFind(name); known != m_atoms.cend()) {
        return *known;
    }
    const auto cookie =
        xcb_intern_atom(m_connection, 0, static_cast<std::uint16_t>(name.size()), name.constData());
    const XcbPointer<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(m_connection, cookie, nullptr));
    if (!reply) {
        return XCB_ATOM_NONE;
    }
    m_atoms.insert(name, reply->atom);
    m_atomNames.insert(reply->atom, name);
    return reply->atom;
}

QByteArray XcbConnection::atomName(xcb_atom_t atom)
{
    if (!m_atomNames.contains(atom)) {
        learnAtomNames({atom});
    }
    return m_atomNames.value(atom);
}

void XcbConnection::learnAtomNames(const std::vector<xcb_atom_t> &atoms)
{
    std::vector<std::pair<xcb_atom_t, xcb_get_atom_name_cookie_t>> asked;
    for (const xcb_atom_t atom : atoms) {
        if (atom != XCB_ATOM_NONE && !m_atomNames.contains(atom)) {
            asked.emplace_back(atom, xcb_get_atom_name(m_connection, atom));
        }
    }
    for (const auto &[atom, cookie] : asked) {
        xcb_generic_error_t *error = nullptr;
        const XcbPointer<xcb_get_atom_name_reply_t> reply(
            xcb_get_atom_name_reply(m_connection, cookie, &error));
        const XcbPointer<xcb_generic_error_t> freed(error);
        if (reply) {
            const QByteArray name(xcb_get_atom_name_name(reply.get()),
                                  xcb_get_atom_name_name_length(reply.get()));
            m_atomNames.insert(atom, name);
            m_atoms.insert(name, atom);
        }
    }
}

xcb_window_t XcbConnection::makeWindow(std::uint32_t eventMask)
{
    const xcb_window_t window = xcb_generate_id(m_connection);
    xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, window, m_root, -10, -10, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &eventMask);
    return window;
}

XcbPointer<xcb_get_property_reply_t> XcbConnection::property(xcb_window_t window, xcb_atom_t name,
                                                             bool isDeleted)
{
    constexpr std::uint32_t Everything = 0x1fffffff; // in words; more than any property holds
    const auto cookie = xcb_get_property(m_connection, isDeleted ? 1 : 0, window, name,
                                         XCB_GET_PROPERTY_TYPE_ANY, 0, Everything);
    xcb_generic_error_t *error = nullptr;
    XcbPointer<xcb_get_property_reply_t> reply(xcb_get_property_reply(m_connection, cookie, &error));
    const XcbPointer<xcb_generic_error_t> freed(error);
    if (reply && reply->type == XCB_ATOM_NONE) {
        reply.reset();
    }
    return reply;
}

void XcbConnection::dispatchPending(const Handler &handler)
{
    while (const Event event{xcb_poll_for_event(m_connection)}) {
        handler(*event);
    }
    flush();
}

XcbConnection::Event XcbConnection::dispatchUntil(const Handler &handler, const Match &match,
                                                  Deadline deadline, const std::function<bool()> &isWanted)
{
    constexpr std::chrono::milliseconds Slice(20); // how late `isWanted` may be heard
    flush();
    while (true) {
        while (Event event{xcb_poll_for_event(m_connection)}) {
            if (match(*event)) {
                return event;
            }
            handler(*event);
        }
        flush();
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        if (left.count() <= 0 || !isUsable() || (isWanted && !isWanted())) {
            return nullptr;
        }
        pollfd waiting = {descriptor(), POLLIN, 0};
        poll(&waiting, 1, static_cast<int>(std::min(left, Slice).count()));
    }
}

} // namespace vesk
