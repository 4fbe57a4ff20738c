#include "Desktop/Peer.h"

#include "Desktop/PrivateDesktop.h"

#include <QFile>
#include <QUuid>

#include <stdexcept>

namespace vesk::test {

Peer::Peer(Screen &screen, const QString &program, const QStringList &arguments, const QString &title,
           const QMap<QString, QString> &environment)
    : m_screen(screen)
    , m_process(program, {arguments, QProcess::SeparateChannels, {}, environment})
{
    const auto window = screen.waitForWindow(title);
    if (!window) {
        throw std::runtime_error("no window of " + program.toStdString());
    }
    m_window = *window;
    activate();
}

void Peer::activate()
{
    if (!m_screen.activate(m_window)) {
        throw std::runtime_error("a window does not come to the front");
    }
}

std::unique_ptr<Peer> startMousepad(Screen &screen, const QString &text)
{
    // An editor that was killed asks at its next start about what it was doing, and takes the focus for it.
    run(QStringLiteral("gsettings"),
        {QStringLiteral("set"), QStringLiteral("org.xfce.mousepad.preferences.file"),
         QStringLiteral("session-restore"), QStringLiteral("never")});
    const QString name = QUuid::createUuid().toString(QUuid::Id128) + QStringLiteral(".txt");
    const QString path = PrivateDesktop::current().folder(QStringLiteral("home")) + u'/' + name;
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text.toUtf8()) < 0) {
        throw std::runtime_error("no file for the editor");
    }
    file.close();
    return std::make_unique<Peer>(screen, QStringLiteral("mousepad"),
                                  QStringList{QStringLiteral("--disable-server"), path}, name);
}

} // namespace vesk::test
