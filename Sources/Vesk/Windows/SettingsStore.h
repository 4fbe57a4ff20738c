#pragma once

#include "Foundation/Config.h"

#include <QFileSystemWatcher>
#include <QObject>
#include <QTimer>

#include <functional>

namespace vesk {

/// The settings file as the windows see it. An edit is applied to what stands in the file at that moment and
/// written at once, so that nothing a person changed by hand is overwritten with older values. Main thread,
/// blocking file access; one for all windows. It never throws: what went wrong is problem().
class SettingsStore final : public QObject {
    Q_OBJECT

public:
    /// Reads the file, and makes it where there is none.
    explicit SettingsStore(QObject *parent = nullptr);

    /// As they were when the file could last be read.
    const Config &config() const { return m_config; }

    /// False while the file's content makes no sense; then nothing is written.
    bool isReadable() const { return m_isReadable; }

    /// The sentence for a file that cannot be read, or for the last change that could not be written.
    const QString &problem() const { return m_problem; }

    /// False when nothing was written. changed() comes in either case, so that controls show what is true.
    bool change(const std::function<void(Config &)> &edit);

    /// Writes the settings as they are: whether a change would be kept, before what cannot be taken back.
    bool canWrite() { return read() && write(m_config); }

    /// Looks at the file again.
    void reload();

    /// The person has given up the unreadable file: it is kept beside the new one, which holds config().
    /// Returns where it is kept; empty when nothing changed.
    QString replaceUnreadable();

Q_SIGNALS:
    void changed();
    void problemChanged();

private:
    bool read();
    bool write(const Config &config);
    void setProblem(bool isReadable, const QString &sentence);
    void watch();

    Config m_config;
    bool m_isReadable = true;
    QString m_problem;
    QFileSystemWatcher m_watcher;
    QTimer m_settling; ///< an editor that truncates and then writes is read after it has done both
};

} // namespace vesk
