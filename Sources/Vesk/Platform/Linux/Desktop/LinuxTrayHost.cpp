#include "Platform/Linux/Desktop/LinuxTrayHost.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingReply>
#include <QDBusVariant>

namespace vesk {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto Watcher = "org.kde.StatusNotifierWatcher"_L1;
constexpr auto WatcherPath = "/StatusNotifierWatcher"_L1;
constexpr auto Patience = 2s; // panels that have both trays have them within one second

} // namespace

LinuxTrayHost::LinuxTrayHost(Clock &clock)
    : m_clock(clock)
    , m_services(Watcher, QDBusConnection::sessionBus(), QDBusServiceWatcher::WatchForOwnerChange)
    , m_embedding([this] { embeddingChanged(); })
{
    connect(&m_services, &QDBusServiceWatcher::serviceOwnerChanged, this, &LinuxTrayHost::askWatcher);
    // The watcher collects items; without a host that shows them it is of no use.
    QDBusConnection bus = QDBusConnection::sessionBus();
    for (const auto signal : {"StatusNotifierHostRegistered"_L1, "StatusNotifierHostUnregistered"_L1}) {
        bus.connect(Watcher, WatcherPath, Watcher, signal, this, SLOT(askWatcher()));
    }
    askWatcher();
    embeddingChanged();
}

LinuxTrayHost::~LinuxTrayHost() { m_gone.cancel(); }

void LinuxTrayHost::askWatcher()
{
    QDBusMessage question =
        QDBusMessage::createMethodCall(Watcher, WatcherPath, u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
    question << QString(Watcher) << u"IsStatusNotifierHostRegistered"_s;
    question.setAutoStartService(false);
    m_question = std::make_unique<QDBusPendingCallWatcher>(QDBusConnection::sessionBus().asyncCall(question));
    connect(m_question.get(), &QDBusPendingCallWatcher::finished, this, [this] {
        const QDBusPendingReply<QDBusVariant> answer = *m_question;
        m_hasNotifierHost = answer.isValid() && answer.value().variant().toBool();
        update();
    });
}

void LinuxTrayHost::embeddingChanged()
{
    m_isEmbeddingSettled = false;
    ++m_embeddingNumber;
    if (m_embedding.isPresent()) {
        launch(u"waiting for a tray"_s, settleEmbedding(m_embeddingNumber));
    }
    update();
}

Task<> LinuxTrayHost::settleEmbedding(quint64 number)
{
    const CancellationToken gone = m_gone;
    co_await m_clock.after(Patience);
    if (!gone.isCancelled() && number == m_embeddingNumber) {
        m_isEmbeddingSettled = true;
        update();
    }
}

void LinuxTrayHost::update()
{
    const Kind embedding = m_isEmbeddingSettled ? Kind::embedding : Kind::none;
    const Kind kind = m_hasNotifierHost ? Kind::statusNotifier : embedding;
    if (kind != m_kind) {
        m_kind = kind;
        if (m_changed) {
            m_changed();
        }
    }
}

} // namespace vesk
