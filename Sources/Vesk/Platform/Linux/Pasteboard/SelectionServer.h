#pragma once

#include "Platform/Linux/Pasteboard/SelectionFormat.h"
#include "Platform/Linux/X11/XcbConnection.h"

#include <map>

namespace vesk {

/// Answers other programs that ask for a selection of ours, large forms in pieces. One thread, the
/// connection's own.
class SelectionServer {
public:
    explicit SelectionServer(XcbConnection &connection);

    /// What the selection offers from now on, having been acquired at `since`.
    void offer(xcb_atom_t selection, SelectionFormats formats, xcb_timestamp_t since);
    void withdraw(xcb_atom_t selection) { m_offers.erase(selection); }

    /// What we offer; null when the selection is not ours.
    const SelectionFormats *offered(xcb_atom_t selection) const;
    bool offersAnything() const { return !m_offers.empty(); }

    /// Everything that arrives; what does not concern this is left alone.
    void handle(const xcb_generic_event_t &event);

private:
    struct Offer {
        SelectionFormats formats;
        xcb_timestamp_t since = XCB_CURRENT_TIME;
    };
    /// A form that is being handed over in pieces: each is sent when the last has been taken away.
    struct Transfer {
        SelectionFormat format;
        qsizetype sent = 0;
        std::chrono::steady_clock::time_point lastPiece;
    };
    using Place = std::pair<xcb_window_t, xcb_atom_t>;

    void answer(const xcb_selection_request_event_t &request);
    bool convert(const Offer &offer, xcb_atom_t target, Place place);
    bool convertSeveral(const Offer &offer, Place place);
    void hand(const SelectionFormat &format, Place place);
    void sendPiece(Place place);
    void forgetAbandoned(xcb_window_t gone);
    void put(Place place, xcb_atom_t type, int unitBits, const void *bytes, qsizetype length);

    XcbConnection &m_connection;
    qsizetype m_pieceSize; ///< in bytes
    std::map<xcb_atom_t, Offer> m_offers;
    std::map<Place, Transfer> m_transfers;
};

} // namespace vesk
