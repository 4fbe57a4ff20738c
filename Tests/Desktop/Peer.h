#pragma once

#include "Desktop/PrivateDesktop.h"
#include "Desktop/Screen.h"

#include <QFile>
#include <QUuid>

#include <stdexcept>

namespace vesk::test {

using namespace Qt::StringLiterals;

/// A program with a window, written by others or standing in for one, in front of everything else.
class Peer {
public:
    /// Starts the program, waits until a window shows whose title matches, and brings it to the front. Throws
    /// std::runtime_error.
    Peer(Screen &screen, const QString &program, const QStringList &arguments, const QString &title,
         const QMap<QString, QString> &environment = {})
        : m_screen(screen)
        , m_process(program, arguments, environment)
    {
        const auto window = screen.waitForWindow(title);
        if (!window) {
            throw std::runtime_error("no window of " + program.toStdString());
        }
        m_window = *window;
        activate();
    }

    Process &process() { return m_process; }
    const Process &process() const { return m_process; }
    Screen::Window window() const { return m_window; }
    void activate()
    {
        if (!m_screen.activate(m_window)) {
            throw std::runtime_error("a window does not come to the front");
        }
    }

private:
    Screen &m_screen;
    Process m_process;
    Screen::Window m_window;
};

/// The GTK 3 editor Mousepad with a file of its own, whose name is its title.
inline std::unique_ptr<Peer> startMousepad(Screen &screen, const QString &text = {})
{
    // An editor that was killed asks at its next start about what it was doing, and takes the focus for it.
    run(u"gsettings"_s,
        {u"set"_s, u"org.xfce.mousepad.preferences.file"_s, u"session-restore"_s, u"never"_s});
    const QString name = QUuid::createUuid().toString(QUuid::Id128) + u".txt"_s;
    const QString path = PrivateDesktop::current().folder(u"home"_s) + u'/' + name;
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text.toUtf8()) < 0) {
        throw std::runtime_error("no file for the editor");
    }
    file.close();
    return std::make_unique<Peer>(screen, u"mousepad"_s, QStringList{u"--disable-server"_s, path}, name);
}

} // namespace vesk::test
