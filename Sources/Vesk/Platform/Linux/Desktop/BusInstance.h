#pragma once

#include "Platform/SingleInstance.h"

#include <QDBusAbstractAdaptor>
#include <QVariantMap>

namespace vesk {

/// One application on a session bus: whoever owns its name. Starting it again calls the owner's
/// org.freedesktop.Application.Activate, which desktops call too.
class BusInstance final : public QObject, public SingleInstance {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    ~BusInstance() override;

    Claim claim(std::function<void()> activated) override;

    // The three calls that a desktop makes of a program it finds on the bus; they all mean the same here.
    Q_SCRIPTABLE void Activate(const QVariantMap &platformData);
    Q_SCRIPTABLE void Open(const QStringList &uris, const QVariantMap &platformData);
    Q_SCRIPTABLE void ActivateAction(const QString &action, const QVariantList &parameters,
                                     const QVariantMap &platformData);

private:
    bool m_ownsName = false;
    std::function<void()> m_activated;
};

} // namespace vesk
