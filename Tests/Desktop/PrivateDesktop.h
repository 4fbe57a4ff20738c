#pragma once

#include "Desktop/Process.h"

#include <QTemporaryDir>

#include <memory>
#include <vector>

namespace vesk::test {

using namespace Qt::StringLiterals;

/// A desktop for this process alone: display, window manager, session bus and accessibility bus, with home
/// and runtime folders that end with it. The constructor puts its addresses into the environment of this
/// process, so everything that is started afterwards belongs to it, and returns when all of it answers.
/// Throws std::runtime_error that names what does not.
class PrivateDesktop {
public:
    static inline const QString StandardScreen = u"1280x800x24"_s;

    explicit PrivateDesktop(const QString &screen = StandardScreen);
    ~PrivateDesktop();
    PrivateDesktop(const PrivateDesktop &) = delete;
    PrivateDesktop &operator=(const PrivateDesktop &) = delete;

    /// The desktop of the running test program (see DesktopMain.cpp).
    static PrivateDesktop &current();

    /// The folder of everything that this desktop keeps: "run", "home", "config", "data", "cache", "tmp",
    /// "logs".
    QString folder(const QString &name) const { return m_folder.filePath(name); }

    /// Ends the accessibility bus and its registry, as a crash of either does.
    void endAccessibilityBus() { m_accessibilityBus.reset(); }
    void startAccessibilityBus();

private:
    void setEnvironment();
    void startDisplay(const QString &screen);
    void startSessionBus();
    void startWindowManager();

    QTemporaryDir m_folder;
    std::unique_ptr<Process> m_accessibilityBus;
    std::vector<std::unique_ptr<Process>> m_services; ///< in the order of their start
};

} // namespace vesk::test
