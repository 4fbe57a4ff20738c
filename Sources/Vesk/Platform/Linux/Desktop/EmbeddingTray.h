#pragma once

#include "Platform/Linux/X11/XcbConnection.h"

#include <QSocketNotifier>

#include <functional>
#include <memory>

namespace vesk {

/// Whether the display has a tray that embeds windows: a panel that owns a selection named after the screen.
/// Main thread.
class EmbeddingTray {
public:
    /// `changed` is called on the event loop when isPresent() has changed.
    explicit EmbeddingTray(std::function<void()> changed);

    bool isPresent() const { return m_owner != XCB_NONE; }

private:
    void read();
    void lookAgain();

    std::function<void()> m_changed;
    XcbConnection m_connection;
    xcb_atom_t m_selection = XCB_ATOM_NONE;
    xcb_window_t m_owner = XCB_NONE;
    std::unique_ptr<QSocketNotifier> m_notifier; ///< null without a display
};

} // namespace vesk
