#pragma once

#include <QDBusServiceWatcher>
#include <QObject>
#include <QSet>
#include <QString>

namespace vesk {

/// Whether the session's screen is locked, as the desktop's screen savers and the login manager announce it
/// over the bus. Main thread. Where none of them runs it is never locked.
class ScreenLock final : public QObject {
    Q_OBJECT

public:
    ScreenLock();

    bool isLocked() const { return !m_lockers.isEmpty(); }

Q_SIGNALS:
    void changed();

private:
    Q_SLOT void announced(bool isActive);
    Q_SLOT void sessionChanged(const QString &interface, const QVariantMap &values,
                               const QStringList &others);
    void set(const QString &locker, bool isActive);

    QDBusServiceWatcher m_savers;
    QSet<QString> m_lockers; ///< who says that it is locked
};

} // namespace vesk
