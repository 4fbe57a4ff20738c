#pragma once

#include "Platform/Linux/Pasteboard/SelectionFormat.h"
#include "Platform/Linux/X11/XcbConnection.h"

namespace vesk {

/// Asks the owner of a selection for everything it offers, in all forms, large ones included, with time
/// limits: QClipboard waits five seconds for a program that hangs. One thread, the connection's own.
class SelectionReader {
public:
    /// How long an owner may say nothing before it counts as hanging: far above the few milliseconds of a
    /// busy program, below what a person notices as a fault.
    static constexpr std::chrono::milliseconds SilenceLimit{500};
    /// How long all forms together may take, for owners that answer. 100 MiB arrive in less.
    static constexpr std::chrono::milliseconds TotalLimit{3000};

    /// `others` is handed what is not an answer to this reader: other programs may want something meanwhile.
    SelectionReader(XcbConnection &connection, XcbConnection::Handler others);

    /// Blocks until everything is read or a limit has passed, or until `isWanted` says no.
    SelectionContent read(xcb_atom_t selection, xcb_timestamp_t time, const std::function<bool()> &isWanted);

private:
    enum class Answer { given, refused, silent };

    Answer ask(xcb_atom_t target, SelectionFormat &format);
    Answer takePieces(SelectionFormat &format);
    std::vector<xcb_atom_t> offeredTargets(const SelectionFormat &targets);
    XcbConnection::Event wait(const XcbConnection::Match &match);

    XcbConnection &m_connection;
    XcbConnection::Handler m_others;
    xcb_window_t m_window = XCB_NONE;
    xcb_atom_t m_property;
    xcb_atom_t m_incremental;

    // Of the reading under way:
    xcb_atom_t m_selection = XCB_ATOM_NONE;
    xcb_timestamp_t m_time = XCB_CURRENT_TIME;
    XcbConnection::Deadline m_end;
    std::function<bool()> m_isWanted;
};

} // namespace vesk
