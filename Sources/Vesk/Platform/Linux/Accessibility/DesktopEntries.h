#pragma once

#include "Platform/Linux/Accessibility/ActiveWindow.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace vesk {

/// A program as the desktop's menus know it.
struct DesktopEntry {
    QString id; ///< the desktop file's name without its folder and suffix
    QString name;
    QString windowClass;  ///< StartupWMClass
    QString program;      ///< the file name that Exec starts; empty for interpreters and launchers
    bool isPlain = false; ///< shown in menus and started without further arguments
};

/// The desktop files of this computer, read once. Immutable, so any thread may ask.
class DesktopEntries {
public:
    DesktopEntries() = default;

    /// Reads the folders, the person's own before the system's: the first file of an id counts. `locale` is
    /// like "de_CH".
    static DesktopEntries read(const QStringList &folders, const QString &locale);

    /// The program of a window; `executable` is the file name that its process runs, empty when not known.
    const DesktopEntry *find(const WindowDescription &window, const QString &executable) const;

private:
    std::vector<DesktopEntry> m_entries; // the plain ones first
};

} // namespace vesk
