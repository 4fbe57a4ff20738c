#include "Server/DeviceID.h"

#include <QCryptographicHash>

namespace vesk {

QString deviceID(const Host &host)
{
    const QString identifier = host.platformIdentifier().value_or(QStringLiteral("unknown"));
    const QByteArray digest =
        QCryptographicHash::hash(QString(u"vesk-device:" + identifier).toUtf8(), QCryptographicHash::Sha256);
    return QString::fromLatin1(digest.toHex());
}

} // namespace vesk
