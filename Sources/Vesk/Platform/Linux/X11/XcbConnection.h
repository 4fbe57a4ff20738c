#pragma once

#include "Platform/Linux/X11/XcbPointers.h"

#include <QByteArray>
#include <QHash>

#include <chrono>
#include <functional>
#include <optional>
#include <vector>
#include <xcb/xcb.h>

namespace vesk {

/// A connection to the X server for one thread. On xcb and not on Xlib, whose error handlers belong to the
/// whole process and end it when another program's window vanishes at the wrong moment.
class XcbConnection {
public:
    using Deadline = std::chrono::steady_clock::time_point;
    using Event = XcbPointer<xcb_generic_event_t>;
    using Handler = std::function<void(const xcb_generic_event_t &)>;
    using Match = std::function<bool(const xcb_generic_event_t &)>;

    /// Connects to the display of the environment; isUsable() tells whether that worked.
    XcbConnection();
    ~XcbConnection();
    XcbConnection(const XcbConnection &) = delete;
    XcbConnection &operator=(const XcbConnection &) = delete;

    /// False when there is no server, or no longer.
    bool isUsable() const;

    xcb_connection_t *get() const { return m_connection; }
    xcb_window_t root() const { return m_root; }
    int descriptor() const { return xcb_get_file_descriptor(m_connection); }

    /// Whether the server has an extension, by its name.
    bool hasExtension(const char *name) const;

    /// The number of a name; asked of the server once.
    xcb_atom_t atom(const QByteArray &name);

    /// The name of a number; empty for a number that stands for nothing.
    QByteArray atomName(xcb_atom_t atom);

    /// Asks for many at once: atomName() then knows them.
    void learnAtomNames(const std::vector<xcb_atom_t> &atoms);

    /// A window that is never shown.
    xcb_window_t makeWindow(std::uint32_t eventMask);

    /// All of a property, whatever its type; nothing when the window has none of that name, or is gone.
    XcbPointer<xcb_get_property_reply_t> property(xcb_window_t window, xcb_atom_t name,
                                                  bool isDeleted = false);

    /// Hands every event that is there to the handler.
    void dispatchPending(const Handler &handler);

    /// Hands events to the handler until one matches, which it returns; nothing at the deadline, or when
    /// `isWanted` says no.
    Event dispatchUntil(const Handler &handler, const Match &match, Deadline deadline,
                        const std::function<bool()> &isWanted = {});

    void flush() { xcb_flush(m_connection); }

private:
    xcb_connection_t *m_connection;
    xcb_window_t m_root = XCB_NONE;
    QHash<QByteArray, xcb_atom_t> m_atoms;
    QHash<xcb_atom_t, QByteArray> m_atomNames;
};

/// An event without the bit that tells it was sent by a program.
inline std::uint8_t eventType(const xcb_generic_event_t &event) { return event.response_type & 0x7f; }

/// The event as what its type says it is.
template <typename T>
const T &eventAs(const xcb_generic_event_t &event)
{
    return reinterpret_cast<const T &>(event);
}

} // namespace vesk
