#pragma once

#include "Platform/Linux/Pasteboard/SelectionReader.h"
#include "Platform/Linux/Pasteboard/SelectionServer.h"

#include <atomic>
#include <map>

namespace vesk {

/// The selections of an X display on a connection of their own: read, owned, counted. One thread, which may
/// be a different one from that of the constructor.
class X11Selections {
public:
    X11Selections();

    /// False when there is no X server, or no longer, or one without XFIXES.
    bool isUsable() const { return m_isUsable && m_connection.isUsable(); }

    int descriptor() const { return m_connection.descriptor(); }
    xcb_atom_t clipboard() const { return m_clipboard; }
    xcb_atom_t primary() const { return XCB_ATOM_PRIMARY; }
    XcbConnection &connection() { return m_connection; }

    /// Everything that the owner offers, ourselves included. Blocks, with limits; see SelectionReader.
    SelectionContent read(xcb_atom_t selection, const std::function<bool()> &isWanted = {});

    /// Owns the selection with this content; without formats nobody owns it afterwards. Returns the change
    /// count as it is after that, before any later change; nothing when the server refuses.
    std::optional<qint64> write(xcb_atom_t selection, SelectionFormats formats);

    /// What lies there by us; null when the selection is somebody else's.
    const SelectionFormats *own(xcb_atom_t selection) const { return m_server.offered(selection); }
    bool ownsAnything() const { return m_server.offersAnything(); }

    /// The window that owns it now; XCB_NONE for nobody.
    xcb_window_t ownerOf(xcb_atom_t selection);
    /// Ours, where something lies there by us.
    xcb_window_t window() const { return m_window; }

    /// Called when another program has copied something there, or taken it away.
    std::function<void(xcb_atom_t)> onTaken = [](xcb_atom_t) {};

    /// How often the owner has changed, by the last event that was handled. From any thread.
    qint64 changeCount(xcb_atom_t selection) const;

    /// Handles what has arrived, without waiting.
    void handlePending();

private:
    void handle(const xcb_generic_event_t &event);
    bool watchOwners();
    xcb_timestamp_t serverTime();

    XcbConnection m_connection;
    SelectionServer m_server;
    SelectionReader m_reader;
    xcb_atom_t m_clipboard = XCB_ATOM_NONE;
    xcb_window_t m_window = XCB_NONE;
    std::uint8_t m_ownerEvent = 0;
    bool m_isUsable = false;
    std::atomic<qint64> m_clipboardChanges = 0;
    std::atomic<qint64> m_primaryChanges = 0;
};

} // namespace vesk
