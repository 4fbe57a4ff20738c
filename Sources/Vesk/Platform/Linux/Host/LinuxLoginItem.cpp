#include "Platform/Linux/Host/LinuxLoginItem.h"

#include "Foundation/Files.h"
#include "Foundation/HomeDirectory.h"

#include <QDir>
#include <QFileInfo>

#include <cerrno>

namespace vesk {

using namespace Qt::StringLiterals;

namespace {

/// A path as one argument of an entry's command line: quoted for the command line, and that once more for the
/// entry's own escapes.
QString quoted(const QString &path)
{
    QString argument;
    for (const QChar character : path) {
        if (character == u'%') {
            argument += u"%%";
        } else if (character == u'\\') {
            argument += u"\\\\\\\\";
        } else if (u"\"`$"_s.contains(character)) {
            argument += u"\\\\"_s + character;
        } else {
            argument += character;
        }
    }
    return u'"' + argument + u'"';
}

} // namespace

LinuxLoginItem::LinuxLoginItem(QString program)
    : m_program(std::move(program))
{
}

QString LinuxLoginItem::file()
{
    const QString configured = qEnvironmentVariable("XDG_CONFIG_HOME");
    const QString settings =
        QDir::isAbsolutePath(configured) ? configured : QString(homeDirectory() + u"/.config");
    return settings + u"/autostart/example.vesk.Vesk.desktop";
}

// Desktops that read no such folder cannot be told from those that do.
Availability LinuxLoginItem::availability() const
{
    return QFileInfo(m_program).isExecutable()
        ? Availability::available()
        : Availability::unavailable(
              u"Vesk does not know where its own program is, so it cannot be started at login."_s);
}

bool LinuxLoginItem::isEnabled() const
{
    try {
        const QList<QByteArray> lines = Files::read(file()).split('\n');
        return !lines.contains("Hidden=true") && !lines.contains("X-GNOME-Autostart-enabled=false");
    } catch (const FileError &) { // there is none, or nobody can read it, desktops included
        return false;
    }
}

void LinuxLoginItem::setEnabled(bool isEnabled)
{
    if (isEnabled) {
        const QString entry =
            u"[Desktop Entry]\nType=Application\nName=Vesk\nComment=Dictation\nIcon=example.vesk.Vesk\n"
            "Exec="_s
            + quoted(m_program) + u"\nX-GNOME-Autostart-enabled=true\n";
        Files::makeFolder(QFileInfo(file()).path());
        Files::replace(file(), entry.toUtf8());
    } else if (!QFile::remove(file()) && QFileInfo::exists(file())) {
        throw FileError(FileError::Operation::write, file(), EACCES);
    }
}

} // namespace vesk
