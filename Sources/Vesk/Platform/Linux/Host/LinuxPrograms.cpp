#include "Platform/Linux/Host/LinuxPrograms.h"

#include "Foundation/HomeDirectory.h"

#include <QDir>

namespace vesk {

QStringList LinuxPrograms::claudeDesktopFiles() const
{
    const QString file = QStringLiteral("/Claude/claude_desktop_config.json");
    const QString configured = qEnvironmentVariable("XDG_CONFIG_HOME");
    const QString settings =
        QDir::isAbsolutePath(configured) ? configured : QString(homeDirectory() + u"/.config");
    return {homeDirectory() + u"/Library/Application Support" + file, settings + file};
}

} // namespace vesk
