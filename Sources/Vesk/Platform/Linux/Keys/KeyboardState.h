#pragma once

#include "Platform/Linux/Keys/PasteKey.h"
#include "Platform/Linux/X11/XcbConnection.h"

namespace vesk {

/// What the X server says about its keyboard and the window in front. Blocks for the server's answer, which
/// takes a fraction of a millisecond; one thread, the connection's own.
class KeyboardState {
public:
    explicit KeyboardState(XcbConnection &connection)
        : m_connection(connection)
    {
    }

    /// Asks the server for the keyboard extension; false when it has none.
    bool begin();

    /// Whether a key that modifies others is down, on whichever keyboard. Those that lock and are let go,
    /// such as Caps Lock, do not count while they are only locked.
    bool isModifierDown();

    /// Whether the window with the focus is a terminal's.
    bool isTerminalFocused();

    /// What pastes with the layout in use now.
    std::optional<PasteChord> pasteChordFor(bool isTerminal);

private:
    std::optional<QByteArray> classOf(xcb_window_t window);
    xcb_window_t focusedWindow();

    XcbConnection &m_connection;
};

} // namespace vesk
