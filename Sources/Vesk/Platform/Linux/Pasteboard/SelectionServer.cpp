#include "Platform/Linux/Pasteboard/SelectionServer.h"

#include <algorithm>
#include <utility>

namespace vesk {

namespace {

constexpr qsizetype PieceSize = 256 * 1024;

// Who took no piece for so long will not take another. Its memory is given back at the next request.
constexpr std::chrono::seconds AbandonedAfter(30);

qsizetype sizeInBytes(const std::vector<xcb_atom_t> &atoms)
{
    return static_cast<qsizetype>(atoms.size()) * qsizetype(sizeof(xcb_atom_t));
}

} // namespace

SelectionServer::SelectionServer(XcbConnection &connection)
    : m_connection(connection)
    , m_pieceSize(std::min<qsizetype>(PieceSize,
                                      qsizetype(xcb_get_maximum_request_length(connection.get())) * 4 - 64))
{
}

void SelectionServer::offer(xcb_atom_t selection, SelectionFormats formats, xcb_timestamp_t since)
{
    m_offers[selection] = {std::move(formats), since};
}

const SelectionFormats *SelectionServer::offered(xcb_atom_t selection) const
{
    const auto offer = m_offers.find(selection);
    return offer == m_offers.end() ? nullptr : &offer->second.formats;
}

void SelectionServer::handle(const xcb_generic_event_t &event)
{
    switch (eventType(event)) {
    case XCB_SELECTION_REQUEST: answer(eventAs<xcb_selection_request_event_t>(event)); break;
    case XCB_SELECTION_CLEAR: {
        // One that we lost before we acquired it again is no news.
        const auto &loss = eventAs<xcb_selection_clear_event_t>(event);
        const auto offer = m_offers.find(loss.selection);
        if (offer != m_offers.end() && static_cast<std::int32_t>(loss.time - offer->second.since) >= 0) {
            m_offers.erase(offer);
        }
        break;
    }
    case XCB_PROPERTY_NOTIFY: {
        const auto &change = eventAs<xcb_property_notify_event_t>(event);
        const Place place(change.window, change.atom);
        if (change.state == XCB_PROPERTY_DELETE && m_transfers.contains(place)) {
            sendPiece(place);
        }
        break;
    }
    case XCB_DESTROY_NOTIFY: forgetAbandoned(eventAs<xcb_destroy_notify_event_t>(event).window); break;
    default: break;
    }
}

void SelectionServer::answer(const xcb_selection_request_event_t &request)
{
    forgetAbandoned(XCB_NONE);
    // Clients from before properties were named leave the name to us.
    const xcb_atom_t property = request.property == XCB_ATOM_NONE ? request.target : request.property;
    const auto offer = m_offers.find(request.selection);
    const bool isGiven = offer != m_offers.end()
        && (request.time == XCB_CURRENT_TIME
            || static_cast<std::int32_t>(request.time - offer->second.since) >= 0)
        && convert(offer->second, request.target, {request.requestor, property});

    // What is sent is always 32 bytes long, the notice shorter.
    union {
        xcb_selection_notify_event_t notice;
        char bytes[32];
    } sent = {};
    sent.notice.response_type = XCB_SELECTION_NOTIFY;
    sent.notice.time = request.time;
    sent.notice.requestor = request.requestor;
    sent.notice.selection = request.selection;
    sent.notice.target = request.target;
    sent.notice.property = isGiven ? property : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
    xcb_send_event(m_connection.get(), 0, request.requestor, XCB_EVENT_MASK_NO_EVENT, sent.bytes);
    m_connection.flush();
}

bool SelectionServer::convert(const Offer &offer, xcb_atom_t target, Place place)
{
    const xcb_atom_t targets = m_connection.atom("TARGETS");
    const xcb_atom_t timestamp = m_connection.atom("TIMESTAMP");
    const xcb_atom_t multiple = m_connection.atom("MULTIPLE");
    if (target == targets) {
        std::vector<xcb_atom_t> all = {targets, timestamp, multiple};
        std::ranges::transform(offer.formats, std::back_inserter(all), &SelectionFormat::target);
        put(place, XCB_ATOM_ATOM, 32, all.data(), sizeInBytes(all));
        return true;
    }
    if (target == timestamp) {
        put(place, XCB_ATOM_INTEGER, 32, &offer.since, sizeof(offer.since));
        return true;
    }
    if (target == multiple) {
        return convertSeveral(offer, place);
    }
    const auto format = std::ranges::find(offer.formats, target, &SelectionFormat::target);
    if (format == offer.formats.end()) {
        return false;
    }
    hand(*format, place);
    return true;
}

/// The property holds pairs of a form and the property it goes to; what we lack is crossed out in the list.
bool SelectionServer::convertSeveral(const Offer &offer, Place place)
{
    const auto list = m_connection.property(place.first, place.second);
    if (!list || list->format != 32) {
        return false;
    }
    const auto *begin = static_cast<const xcb_atom_t *>(xcb_get_property_value(list.get()));
    std::vector<xcb_atom_t> pairs(begin, begin + xcb_get_property_value_length(list.get()) / 4);
    const xcb_atom_t multiple = m_connection.atom("MULTIPLE");
    for (std::size_t i = 0; i + 1 < pairs.size(); i += 2) {
        if (pairs[i] == multiple || !convert(offer, pairs[i], {place.first, pairs[i + 1]})) {
            pairs[i + 1] = XCB_ATOM_NONE;
        }
    }
    put(place, m_connection.atom("ATOM_PAIR"), 32, pairs.data(), sizeInBytes(pairs));
    return true;
}

void SelectionServer::hand(const SelectionFormat &format, Place place)
{
    if (format.bytes.size() <= m_pieceSize) {
        put(place, format.type, format.unitBits, format.bytes.constData(), format.bytes.size());
        return;
    }
    const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(m_connection.get(), place.first, XCB_CW_EVENT_MASK, &mask);
    const auto atLeast = static_cast<std::uint32_t>(std::min<qsizetype>(format.bytes.size(), 0x7fffffff));
    put(place, m_connection.atom("INCR"), 32, &atLeast, sizeof(atLeast));
    m_transfers[place] = {format, 0, std::chrono::steady_clock::now()};
}

void SelectionServer::sendPiece(Place place)
{
    Transfer &transfer = m_transfers[place];
    const SelectionFormat &format = transfer.format;
    const qsizetype length = std::min(m_pieceSize / 4 * 4, format.bytes.size() - transfer.sent);
    put(place, format.type, format.unitBits, format.bytes.constData() + transfer.sent, length);
    transfer.sent += length;
    transfer.lastPiece = std::chrono::steady_clock::now();
    if (length == 0) { // an empty piece is the end
        m_transfers.erase(place);
    }
    m_connection.flush();
}

void SelectionServer::forgetAbandoned(xcb_window_t gone)
{
    const auto now = std::chrono::steady_clock::now();
    std::erase_if(m_transfers, [&](const auto &entry) {
        return entry.first.first == gone || now - entry.second.lastPiece > AbandonedAfter;
    });
}

void SelectionServer::put(Place place, xcb_atom_t type, int unitBits, const void *bytes, qsizetype length)
{
    xcb_change_property(m_connection.get(), XCB_PROP_MODE_REPLACE, place.first, place.second, type,
                        static_cast<std::uint8_t>(unitBits),
                        static_cast<std::uint32_t>(length / (unitBits / 8)), bytes);
}

} // namespace vesk
