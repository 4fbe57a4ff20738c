#pragma once

#include "Foundation/SerialQueue.h"
#include "Foundation/Task.h"
#include "Platform/Linux/Accessibility/AtspiTypes.h"
#include "Platform/Linux/Accessibility/Patience.h"

#include <QDBusConnection>
#include <QDBusPendingCall>
#include <QObject>

#include <memory>

namespace vesk {

/// A connection of our own to the accessibility bus, found again when the bus restarts; connecting also
/// switches the session's accessibility on. Main thread; only the
/// connecting, which Qt does not do without waiting, happens on the worker. Without a connection every call
/// fails at once.
class AtspiBus final : public QObject, public std::enable_shared_from_this<AtspiBus> {
    Q_OBJECT

public:
    explicit AtspiBus(std::shared_ptr<SerialQueue> worker);
    ~AtspiBus() override;

    /// Connects in the background unless that is under way or done. Cheap: called before every capture.
    void ensureConnected();

    bool isConnected() const { return m_connection.isConnected(); }

    /// A sentence for the log; empty while nothing is wrong.
    const QString &failure() const { return m_failure; }

    template <typename... Arguments>
    QDBusPendingCall call(Patience patience, const atspi::Reference &object, const QString &interface,
                          const QString &method, const Arguments &...arguments) const
    {
        return send(patience, object, interface, method, QVariantList{QVariant::fromValue(arguments)...});
    }

    QDBusPendingCall property(Patience patience, const atspi::Reference &object, const QString &interface,
                              const QString &name) const;

    /// Asks the bus itself which process a name belongs to; no program is involved.
    QDBusPendingCall processOf(Patience patience, const QString &service) const;

Q_SIGNALS:
    void connected();
    void disconnected();
    void focusChanged(vesk::atspi::Reference element, bool isFocused);
    void serviceVanished(QString service);

private Q_SLOTS:
    void onDisconnected();
    void onLauncherChanged(const QString &name, const QString &oldOwner, const QString &newOwner);
    void onFocusEvent(const QDBusMessage &message);
    void onNameOwnerChanged(const QString &name, const QString &oldOwner, const QString &newOwner);

private: // NOLINT(readability-redundant-access-specifiers): the slots end here
    struct Attempt {
        QString name; ///< of Qt's connection; empty when there is none
        QString failure;
    };
    static Task<> connect(std::weak_ptr<AtspiBus> bus, std::shared_ptr<SerialQueue> worker, bool mayStart);
    static Attempt attempt(bool mayStart);
    void take(const Attempt &attempt);
    void listen();
    void askForEvents() const;
    QDBusPendingCall send(Patience patience, const atspi::Reference &object, const QString &interface,
                          const QString &method, const QVariantList &arguments) const;

    std::shared_ptr<SerialQueue> m_worker;
    QDBusConnection m_connection;
    QString m_failure;
    bool m_isConnecting = false;
    bool m_wasConnected = false;
};

} // namespace vesk
