#include "Platform/Linux/Desktop/BusInstance.h"

#include "Foundation/Log.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusError>
#include <QDBusMessage>

namespace vesk {

using namespace Qt::StringLiterals;

namespace {

const QString Name = QStringLiteral("example.vesk.Vesk");
const QString Path = QStringLiteral("/example/vesk/Vesk");
/// A person who started the program again is waiting for a window; a hung one would give them none.
constexpr int Patience = 3000;

} // namespace

BusInstance::~BusInstance()
{
    if (m_ownsName) {
        QDBusConnection::sessionBus().unregisterService(Name);
    }
}

SingleInstance::Claim BusInstance::claim(std::function<void()> activated)
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        Log::write(u"no session bus: "_s + bus.lastError().message());
        return Claim::unknown;
    }
    m_activated = std::move(activated);
    // Before the name, so that nobody finds an owner that cannot be called.
    bus.registerObject(Path, this, QDBusConnection::ExportScriptableContents);
    const auto reply = bus.interface()->registerService(Name, QDBusConnectionInterface::DontQueueService);
    m_ownsName = reply.isValid() && reply.value() == QDBusConnectionInterface::ServiceRegistered;
    if (m_ownsName) {
        return Claim::first;
    }
    if (!reply.isValid()) {
        Log::write(u"the session bus does not say whether Vesk runs: "_s + reply.error().message());
        return Claim::unknown;
    }
    auto call = QDBusMessage::createMethodCall(Name, Path, u"org.freedesktop.Application"_s, u"Activate"_s);
    call << QVariantMap();
    const QDBusMessage answer = bus.call(call, QDBus::Block, Patience);
    if (answer.type() == QDBusMessage::ErrorMessage) {
        Log::write(u"the running application does not answer: "_s + answer.errorMessage());
        return Claim::stuck;
    }
    return Claim::second;
}

void BusInstance::Activate(const QVariantMap &) { m_activated(); }
void BusInstance::Open(const QStringList &, const QVariantMap &) { m_activated(); }
void BusInstance::ActivateAction(const QString &, const QVariantList &, const QVariantMap &)
{
    m_activated();
}

} // namespace vesk
