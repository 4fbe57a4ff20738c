#include "Platform/Linux/Desktop/EmbeddingTray.h"

#include "Platform/Linux/Desktop/ScreenSelection.h"

namespace vesk {

namespace {

/// A new tray tells the root window's watchers that it is there; that it has gone shows on its own window.
void watch(const XcbConnection &connection, xcb_window_t window)
{
    const std::uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(connection.get(), window, XCB_CW_EVENT_MASK, &mask);
}

} // namespace

EmbeddingTray::EmbeddingTray(std::function<void()> changed)
    : m_changed(std::move(changed))
{
    if (!m_connection.isUsable()) {
        return;
    }
    m_selection = screenSelection(m_connection, "_NET_SYSTEM_TRAY_S");
    watch(m_connection, m_connection.root());
    lookAgain();
    m_notifier = std::make_unique<QSocketNotifier>(m_connection.descriptor(), QSocketNotifier::Read);
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(), [this] { read(); });
}

void EmbeddingTray::lookAgain()
{
    m_owner = selectionOwner(m_connection, m_selection);
    if (m_owner == XCB_NONE) {
        return;
    }
    watch(m_connection, m_owner);
    // It may have gone before we watched it, and nothing would tell us.
    m_owner = selectionOwner(m_connection, m_selection);
}

void EmbeddingTray::read()
{
    bool isAnnounced = false;
    m_connection.dispatchPending([&](const xcb_generic_event_t &event) {
        const auto type = eventType(event);
        isAnnounced |= type == XCB_CLIENT_MESSAGE || type == XCB_DESTROY_NOTIFY;
    });
    if (!m_connection.isUsable()) {
        m_notifier->setEnabled(false); // a closed connection would be readable for ever
        return;
    }
    const bool wasPresent = isPresent();
    if (isAnnounced) {
        lookAgain();
    }
    if (wasPresent != isPresent()) {
        m_changed();
    }
}

} // namespace vesk
