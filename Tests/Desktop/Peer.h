#pragma once

#include "Desktop/Process.h"
#include "Desktop/Screen.h"

namespace vesk::test {

/// A program with a window, written by others or standing in for one, in front of everything else.
class Peer {
public:
    /// Starts the program, waits until a window shows whose title matches, and brings it to the front. Throws
    /// std::runtime_error.
    Peer(Screen &screen, const QString &program, const QStringList &arguments, const QString &title,
         const QMap<QString, QString> &environment = {});

    Process &process() { return m_process; }
    const Process &process() const { return m_process; }
    Screen::Window window() const { return m_window; }
    void activate();

private:
    Screen &m_screen;
    Process m_process;
    Screen::Window m_window;
};

/// The GTK 3 editor Mousepad with a file of its own, whose name is its title.
std::unique_ptr<Peer> startMousepad(Screen &screen, const QString &text = {});

} // namespace vesk::test
