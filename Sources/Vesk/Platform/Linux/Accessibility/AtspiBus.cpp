#include "Platform/Linux/Accessibility/AtspiBus.h"

#include "Foundation/Log.h"

#include <QCoroFuture>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QPromise>

#include <atomic>

namespace vesk {

namespace {

using namespace Qt::StringLiterals;

constexpr int AddressLimit = 2000; // milliseconds, on the worker: the bus may have to be started for it
const QString LauncherName = u"org.a11y.Bus"_s;
const QString BusDaemon = u"org.freedesktop.DBus"_s;
const QString BusDaemonPath = u"/org/freedesktop/DBus"_s;

QDBusMessage ask(const QDBusConnection &session, const QString &interface, const QString &method,
                 const QVariantList &arguments, bool mayStart)
{
    QDBusMessage question =
        QDBusMessage::createMethodCall(LauncherName, u"/org/a11y/bus"_s, interface, method);
    question.setArguments(arguments);
    question.setAutoStartService(mayStart);
    return session.call(question, QDBus::Block, AddressLimit);
}

/// Qt programs and Firefox show their fields, those for passwords among them, only where the session's
/// accessibility is on. Most sessions begin with it off; once on it stays on for the sessions to come.
void switchOn(const QDBusConnection &session)
{
    const QString properties = u"org.freedesktop.DBus.Properties"_s;
    const QVariantList isEnabled = {u"org.a11y.Status"_s, u"IsEnabled"_s};
    if (atspi::property(ask(session, properties, u"Get"_s, isEnabled, false)).toBool()) {
        return;
    }
    const QVariant on = QVariant::fromValue(QDBusVariant(true));
    const QDBusMessage answer = ask(session, properties, u"Set"_s, isEnabled + QVariantList{on}, false);
    Log::write(answer.type() == QDBusMessage::ErrorMessage
                   ? QString(u"the session's accessibility stays off: " + answer.errorMessage())
                   : u"the session's accessibility is switched on"_s);
}

} // namespace

AtspiBus::AtspiBus(std::shared_ptr<SerialQueue> worker)
    : m_worker(std::move(worker))
    , m_connection(QString()) // one that is not connected
{
    atspi::registerTypes();
}

AtspiBus::~AtspiBus()
{
    if (!m_connection.name().isEmpty()) {
        QDBusConnection::disconnectFromBus(m_connection.name());
    }
}

void AtspiBus::ensureConnected()
{
    if (!m_isConnecting && !isConnected()) {
        m_isConnecting = true;
        launch(u"Connecting to the accessibility bus"_s,
               connect(weak_from_this(), m_worker, !m_wasConnected));
    }
}

Task<> AtspiBus::connect(std::weak_ptr<AtspiBus> bus, std::shared_ptr<SerialQueue> worker, bool mayStart)
{
    const auto promise = std::make_shared<QPromise<Attempt>>();
    promise->start();
    const QFuture<Attempt> future = promise->future();
    worker->async([promise, mayStart] {
        promise->addResult(attempt(mayStart));
        promise->finish();
    });
    const Attempt result = co_await future;
    if (const auto self = bus.lock()) {
        self->take(result);
    } else if (!result.name.isEmpty()) {
        QDBusConnection::disconnectFromBus(result.name);
    }
}

/// On the worker.
AtspiBus::Attempt AtspiBus::attempt(bool mayStart)
{
    static std::atomic<int> number = 0;
    const QDBusConnection session = QDBusConnection::sessionBus();
    // A bus that went away is started again by whoever had set it up, with the settings of the session.
    const QDBusMessage answer = ask(session, LauncherName, u"GetAddress"_s, {}, mayStart);
    const auto address = atspi::text(answer);
    if (!address || address->isEmpty()) {
        return {{}, answer.errorMessage()};
    }
    const QString name = u"vesk-accessibility-"_s + QString::number(++number);
    const QDBusConnection connection = QDBusConnection::connectToBus(*address, name);
    if (!connection.isConnected()) {
        const QString failure = connection.lastError().message();
        QDBusConnection::disconnectFromBus(name);
        return {{}, failure};
    }
    switchOn(session);
    return {name, {}};
}

void AtspiBus::take(const Attempt &attempt)
{
    m_isConnecting = false;
    if (m_failure != attempt.failure) { // asked before every capture, told once
        m_failure = attempt.failure;
        if (!m_failure.isEmpty()) {
            Log::write(u"No accessibility bus: "_s + m_failure);
        }
    }
    if (!attempt.name.isEmpty()) {
        m_connection = QDBusConnection(attempt.name);
        if (!m_wasConnected) {
            m_wasConnected = true;
            QDBusConnection::sessionBus().connect(BusDaemon, BusDaemonPath, BusDaemon, u"NameOwnerChanged"_s,
                                                  QStringList(LauncherName), QString(), this,
                                                  SLOT(onLauncherChanged(QString, QString, QString)));
        }
        listen();
        Q_EMIT connected();
    }
}

void AtspiBus::listen()
{
    m_connection.connect(QString(), u"/org/freedesktop/DBus/Local"_s, u"org.freedesktop.DBus.Local"_s,
                         u"Disconnected"_s, this, SLOT(onDisconnected()));
    m_connection.connect(BusDaemon, BusDaemonPath, BusDaemon, u"NameOwnerChanged"_s, this,
                         SLOT(onNameOwnerChanged(QString, QString, QString)));
    m_connection.connect(QString(), QString(), u"org.a11y.atspi.Event.Object"_s, u"StateChanged"_s,
                         QStringList(u"focused"_s), QString(), this, SLOT(onFocusEvent(QDBusMessage)));
    askForEvents();
}

/// Programs send nothing that nobody has asked for.
void AtspiBus::askForEvents() const
{
    const Patience patience{std::chrono::seconds(5), Patience::Clock::now() + std::chrono::seconds(5)};
    call(patience, {u"org.a11y.atspi.Registry"_s, u"/org/a11y/atspi/registry"_s},
         u"org.a11y.atspi.Registry"_s, u"RegisterEvent"_s, u"object:state-changed:focused"_s, QStringList(),
         QString());
}

void AtspiBus::onDisconnected()
{
    if (m_connection.name().isEmpty()) {
        return;
    }
    QDBusConnection::disconnectFromBus(m_connection.name());
    m_connection = QDBusConnection(QString());
    Q_EMIT disconnected();
    ensureConnected();
}

void AtspiBus::onLauncherChanged(const QString &, const QString &, const QString &newOwner)
{
    if (!newOwner.isEmpty()) {
        ensureConnected();
    }
}

void AtspiBus::onFocusEvent(const QDBusMessage &message)
{
    if (message.arguments().size() >= 2) {
        Q_EMIT focusChanged({message.service(), message.path()}, message.arguments().at(1).toInt() != 0);
    }
}

void AtspiBus::onNameOwnerChanged(const QString &name, const QString &oldOwner, const QString &newOwner)
{
    if (newOwner.isEmpty() && name == oldOwner) {
        Q_EMIT serviceVanished(name);
    } else if (name == u"org.a11y.atspi.Registry" && !newOwner.isEmpty()) {
        askForEvents(); // a new registry knows nothing of what the old one was asked
    }
}

QDBusPendingCall AtspiBus::property(Patience patience, const atspi::Reference &object,
                                    const QString &interface, const QString &name) const
{
    return call(patience, object, u"org.freedesktop.DBus.Properties"_s, u"Get"_s, interface, name);
}

QDBusPendingCall AtspiBus::processOf(Patience patience, const QString &service) const
{
    return call(patience, {BusDaemon, BusDaemonPath}, BusDaemon, u"GetConnectionUnixProcessID"_s, service);
}

QDBusPendingCall AtspiBus::send(Patience patience, const atspi::Reference &object, const QString &interface,
                                const QString &method, const QVariantList &arguments) const
{
    const auto left = patience.left();
    if (left.count() <= 0 || object.isNull() || !isConnected()) {
        return QDBusPendingCall::fromError(QDBusError(QDBusError::Timeout, u"not asked"_s));
    }
    QDBusMessage message = QDBusMessage::createMethodCall(object.service, object.path, interface, method);
    message.setArguments(arguments);
    return m_connection.asyncCall(message, static_cast<int>(left.count()));
}

} // namespace vesk
