#include "Platform/Linux/Pasteboard/SelectionReader.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace vesk {

namespace {

// What describes or changes the selection instead of being a form of it, and Qt's own decoded copy of an
// image, which makes Qt offer a dozen image types with nothing in them.
constexpr std::string_view NotForms[] = {
    "TARGETS", "TIMESTAMP",        "MULTIPLE",        "SAVE_TARGETS",
    "DELETE",  "INSERT_SELECTION", "INSERT_PROPERTY", "application/x-qt-image"};

bool isForm(const QByteArray &name)
{
    return !name.isEmpty() && std::ranges::find(NotForms, std::string_view(name)) == std::end(NotForms);
}

/// Text before all else: should time run out, it is what a person misses most.
bool isText(const QByteArray &name)
{
    return name.startsWith("text/") || name == "UTF8_STRING" || name == "STRING" || name == "TEXT";
}

QByteArray bytesOf(const xcb_get_property_reply_t &reply)
{
    return {static_cast<const char *>(xcb_get_property_value(&reply)), xcb_get_property_value_length(&reply)};
}

} // namespace

SelectionReader::SelectionReader(XcbConnection &connection, XcbConnection::Handler others)
    : m_connection(connection)
    , m_others(std::move(others))
    , m_property(connection.atom("VESK_SELECTION"))
    , m_incremental(connection.atom("INCR"))
{
}

SelectionContent SelectionReader::read(xcb_atom_t selection, xcb_timestamp_t time,
                                       const std::function<bool()> &isWanted)
{
    m_selection = selection;
    m_time = time;
    m_end = std::chrono::steady_clock::now() + TotalLimit;
    m_isWanted = isWanted;
    if (m_window == XCB_NONE) {
        m_window = m_connection.makeWindow(XCB_EVENT_MASK_PROPERTY_CHANGE);
    }

    SelectionContent content;
    SelectionFormat targets;
    Answer answer = ask(m_connection.atom("TARGETS"), targets);
    // Very old programs have text and no list of what they have.
    const std::vector<xcb_atom_t> offered = answer == Answer::given
        ? offeredTargets(targets)
        : std::vector<xcb_atom_t>{m_connection.atom("UTF8_STRING"), XCB_ATOM_STRING};
    for (std::size_t i = 0; i < offered.size() && answer != Answer::silent; ++i) {
        SelectionFormat format;
        answer = ask(offered[i], format);
        if (answer == Answer::given) {
            content.formats.push_back(std::move(format));
        }
    }
    if (answer == Answer::silent) {
        content.isComplete = false;
        // The answer may still come, to a window that nobody looks at any more. It is not destroyed: there
        // are programs that end when the window they answer to is gone.
        m_window = XCB_NONE;
    }
    return content;
}

std::vector<xcb_atom_t> SelectionReader::offeredTargets(const SelectionFormat &targets)
{
    std::vector<xcb_atom_t> offered;
    if (targets.unitBits != 32) {
        return offered;
    }
    const auto *atoms = reinterpret_cast<const xcb_atom_t *>(targets.bytes.constData());
    for (qsizetype i = 0; i < targets.bytes.size() / qsizetype(sizeof(xcb_atom_t)); ++i) {
        if (std::ranges::find(offered, atoms[i]) == offered.end()) {
            offered.push_back(atoms[i]);
        }
    }
    m_connection.learnAtomNames(offered);
    std::erase_if(offered, [this](xcb_atom_t atom) { return !isForm(m_connection.atomName(atom)); });
    std::ranges::stable_partition(offered,
                                  [this](xcb_atom_t atom) { return isText(m_connection.atomName(atom)); });
    return offered;
}

SelectionReader::Answer SelectionReader::ask(xcb_atom_t target, SelectionFormat &format)
{
    format.target = target;
    xcb_delete_property(m_connection.get(), m_window, m_property);
    xcb_convert_selection(m_connection.get(), m_window, m_selection, target, m_property, m_time);
    const auto event = wait([this, target](const xcb_generic_event_t &e) {
        const auto &notice = eventAs<xcb_selection_notify_event_t>(e);
        return eventType(e) == XCB_SELECTION_NOTIFY && notice.requestor == m_window
            && notice.selection == m_selection && notice.target == target;
    });
    if (!event) {
        return Answer::silent;
    }
    if (eventAs<xcb_selection_notify_event_t>(*event).property == XCB_ATOM_NONE) {
        return Answer::refused;
    }
    const auto reply = m_connection.property(m_window, m_property, true);
    if (!reply) {
        return Answer::refused;
    }
    if (reply->type == m_incremental) {
        return takePieces(format); // reading the announcement deleted it, which asks for the first piece
    }
    format.type = reply->type;
    format.unitBits = reply->format;
    format.bytes = bytesOf(*reply);
    return Answer::given;
}

SelectionReader::Answer SelectionReader::takePieces(SelectionFormat &format)
{
    while (true) {
        const auto event = wait([this](const xcb_generic_event_t &e) {
            const auto &change = eventAs<xcb_property_notify_event_t>(e);
            return eventType(e) == XCB_PROPERTY_NOTIFY && change.window == m_window
                && change.atom == m_property && change.state == XCB_PROPERTY_NEW_VALUE;
        });
        if (!event) {
            return Answer::silent;
        }
        const auto reply = m_connection.property(m_window, m_property, true);
        if (!reply) {
            return Answer::refused;
        }
        format.type = reply->type;
        format.unitBits = reply->format == 0 ? format.unitBits : reply->format;
        const QByteArray piece = bytesOf(*reply);
        if (piece.isEmpty()) {
            return Answer::given;
        }
        format.bytes.append(piece);
    }
}

XcbConnection::Event SelectionReader::wait(const XcbConnection::Match &match)
{
    const auto silence = std::chrono::steady_clock::now() + SilenceLimit;
    return m_connection.dispatchUntil(m_others, match, std::min(silence, m_end), m_isWanted);
}

} // namespace vesk
