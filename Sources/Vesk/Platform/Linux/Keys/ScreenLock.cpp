#include "Platform/Linux/Keys/ScreenLock.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QVariantMap>

namespace vesk {

using namespace Qt::StringLiterals;

namespace {

struct Saver {
    QLatin1String name;
    QLatin1String path;
};

/// Whoever locks the screen on the desktops in use. The interface is called like the service.
constexpr Saver Savers[] = {
    {"org.freedesktop.ScreenSaver"_L1, "/org/freedesktop/ScreenSaver"_L1},
    {"org.gnome.ScreenSaver"_L1, "/org/gnome/ScreenSaver"_L1},
    {"org.mate.ScreenSaver"_L1, "/org/mate/ScreenSaver"_L1},
    {"org.cinnamon.ScreenSaver"_L1, "/org/cinnamon/ScreenSaver"_L1},
    {"org.xfce.ScreenSaver"_L1, "/org/xfce/ScreenSaver"_L1},
};

constexpr auto LoginSession = "org.freedesktop.login1.Session"_L1;

/// A path on the bus does not begin a part with a digit: the login manager spells session "2" as "_32".
QString sessionPath()
{
    QString id = qEnvironmentVariable("XDG_SESSION_ID");
    if (!id.isEmpty() && id[0].isDigit()) {
        id = u'_' + QString::number(id[0].unicode(), 16) + id.mid(1);
    }
    return u"/org/freedesktop/login1/session/"_s + (id.isEmpty() ? u"auto"_s : id);
}

} // namespace

ScreenLock::ScreenLock()
{
    QDBusConnection session = QDBusConnection::sessionBus();
    // One that crashes while it locks never says that it has ended; the login manager knows better then.
    m_savers.setConnection(session);
    m_savers.setWatchMode(QDBusServiceWatcher::WatchForUnregistration);
    connect(&m_savers, &QDBusServiceWatcher::serviceUnregistered, this, [this] { announced(false); });
    for (const Saver &saver : Savers) {
        // Not bound to the service: the same screen saver may announce itself under several names.
        session.connect(QString(), QString(), saver.name, u"ActiveChanged"_s, this, SLOT(announced(bool)));
        QDBusMessage question =
            QDBusMessage::createMethodCall(saver.name, saver.path, saver.name, u"GetActive"_s);
        question.setAutoStartService(false);
        m_savers.addWatchedService(saver.name);
        auto *watcher = new QDBusPendingCallWatcher(session.asyncCall(question), this);
        connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, name = saver.name, watcher] {
            const QDBusPendingReply<bool> answer = *watcher;
            if (answer.isValid()) {
                set(name, answer.value());
            }
            watcher->deleteLater();
        });
    }
    QDBusConnection::systemBus().connect(u"org.freedesktop.login1"_s, sessionPath(),
                                         u"org.freedesktop.DBus.Properties"_s, u"PropertiesChanged"_s, this,
                                         SLOT(sessionChanged(QString, QVariantMap, QStringList)));
}

void ScreenLock::announced(bool isActive) { set(u"ActiveChanged"_s, isActive); }

void ScreenLock::sessionChanged(const QString &interface, const QVariantMap &values, const QStringList &)
{
    const auto hint = values.constFind(u"LockedHint"_s);
    if (interface == LoginSession && hint != values.cend()) {
        set(LoginSession, hint->toBool());
    }
}

void ScreenLock::set(const QString &locker, bool isActive)
{
    const bool wasLocked = isLocked();
    if (isActive) {
        m_lockers.insert(locker);
    } else {
        m_lockers.remove(locker);
        // The first answer may have come under another name than the announcement of the end.
        if (locker == u"ActiveChanged") {
            m_lockers = m_lockers & QSet<QString>{LoginSession};
        }
    }
    if (wasLocked != isLocked()) {
        Q_EMIT changed();
    }
}

} // namespace vesk
