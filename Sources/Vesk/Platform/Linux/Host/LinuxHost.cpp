#include "Platform/Linux/Host/LinuxHost.h"

#include "Foundation/Files.h"

#include <QFile>
#include <QSysInfo>

namespace vesk {

LinuxHost::LinuxHost(QString machineIdFile)
    : m_machineIdFile(std::move(machineIdFile))
{
}

std::optional<QString> LinuxHost::platformIdentifier() const
{
    try {
        const QString identifier = QString::fromLatin1(Files::read(m_machineIdFile)).trimmed();
        return identifier.isEmpty() ? std::nullopt : std::optional(identifier);
    } catch (
        const FileError &) { // containers and very small systems have none; the caller has a word for that
        return std::nullopt;
    }
}

std::optional<QString> LinuxHost::localizedName() const
{
    const QString name = QSysInfo::machineHostName();
    return name.isEmpty() ? std::nullopt : std::optional(name);
}

QString LinuxHost::executable() { return QFile::symLinkTarget(QStringLiteral("/proc/self/exe")); }

bool LinuxHost::hasDisplay()
{
    return !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

} // namespace vesk
