#pragma once

#include "Foundation/SerialQueue.h"
#include "Foundation/Task.h"
#include "Platform/Linux/Accessibility/DesktopEntries.h"

#include <QFileSystemWatcher>
#include <QObject>

#include <memory>

namespace vesk {

/// The desktop's list of programs, read in the background at launch and again when it changes. Main thread.
class ProgramNames final : public QObject, public std::enable_shared_from_this<ProgramNames> {
    Q_OBJECT

public:
    explicit ProgramNames(std::shared_ptr<SerialQueue> worker);

    /// Reads the list again; at once if no reading is under way, else after it.
    void refresh();

    bool isReady() const { return m_entries != nullptr; }

    /// The program of a window; null when the list does not know it, or is not there yet. Valid until the
    /// next turn of the event loop.
    const DesktopEntry *find(const WindowDescription &window) const;

private:
    static Task<> read(std::weak_ptr<ProgramNames> names, std::shared_ptr<SerialQueue> worker,
                       QStringList folders);

    std::shared_ptr<SerialQueue> m_worker;
    QStringList m_folders;
    QFileSystemWatcher m_watcher;
    std::shared_ptr<const DesktopEntries> m_entries;
    bool m_isReading = false;
    bool m_isStale = false;
};

} // namespace vesk
