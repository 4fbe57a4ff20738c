#pragma once

#include "Foundation/Cancellation.h"
#include "Platform/Clock.h"
#include "Platform/Linux/Desktop/EmbeddingTray.h"
#include "Platform/TrayHost.h"

#include <QDBusPendingCallWatcher>
#include <QDBusServiceWatcher>

namespace vesk {

/// The two trays of Linux desktops: items over the session bus, which most have, and the older embedding over
/// X11. Where both are on their way, as while a session starts, the bus is given the time to be first: Qt
/// keeps for ever to what it finds.
class LinuxTrayHost final : public QObject, public TrayHost {
    Q_OBJECT

public:
    /// The clock outlives it.
    explicit LinuxTrayHost(Clock &clock);
    ~LinuxTrayHost() override;

    Kind kind() const override { return m_kind; }
    void setChangeHandler(std::function<void()> handler) override { m_changed = std::move(handler); }

private:
    Q_SLOT void askWatcher();
    void embeddingChanged();
    Task<> settleEmbedding(quint64 number);
    void update();

    Clock &m_clock;
    std::function<void()> m_changed;
    QDBusServiceWatcher m_services;
    std::unique_ptr<QDBusPendingCallWatcher> m_question; ///< the last one that was asked
    bool m_hasNotifierHost = false;
    EmbeddingTray m_embedding;
    bool m_isEmbeddingSettled = false;
    quint64 m_embeddingNumber = 0;
    Kind m_kind = Kind::none;
    CancellationToken m_gone;
};

} // namespace vesk
