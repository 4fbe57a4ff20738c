#include "Windows/SettingsStore.h"

#include "Foundation/UserError.h"

#include <QFile>
#include <QFileInfo>

namespace vesk {

using namespace Qt::StringLiterals;

SettingsStore::SettingsStore(QObject *parent)
    : QObject(parent)
{
    m_settling.setSingleShot(true);
    m_settling.setInterval(std::chrono::milliseconds(50));
    const auto settle = qOverload<>(&QTimer::start);
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, &m_settling, settle);
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, &m_settling, settle);
    connect(&m_settling, &QTimer::timeout, this, &SettingsStore::reload);
    read();
    watch();
}

void SettingsStore::reload()
{
    const Config before = m_config;
    read();
    watch();
    if (m_config != before) {
        Q_EMIT changed();
    }
}

bool SettingsStore::change(const std::function<void(Config &)> &edit)
{
    if (!read()) {
        Q_EMIT changed();
        return false;
    }
    Config edited = m_config;
    edit(edited);
    const bool isWritten = edited == m_config || write(edited);
    Q_EMIT changed();
    return isWritten;
}

QString SettingsStore::replaceUnreadable()
{
    if (read()) { // it was repaired meanwhile
        Q_EMIT changed();
        return {};
    }
    const QString aside = Config::file() + u".unreadable"_s;
    QString kept = aside;
    for (int number = 2; QFileInfo::exists(kept); ++number) {
        kept = aside + QString::number(number);
    }
    if (!QFile::rename(Config::file(), kept)) {
        setProblem(false, tr("%1 cannot be moved aside, so it was left alone.").arg(Config::file()));
        return {};
    }
    if (!write(m_config)) {
        QFile::rename(kept, Config::file());
        m_isReadable = false;
        return {};
    }
    setProblem(true, {});
    Q_EMIT changed();
    return kept;
}

bool SettingsStore::read()
{
    try {
        m_config = Config::load();
        setProblem(true, {});
    } catch (const UserError &error) {
        // A folder that cannot be written has no file to protect: the defaults are shown, and every change
        // says again why it was not kept.
        setProblem(!QFileInfo::exists(Config::file()), error.errorDescription());
    }
    return m_isReadable;
}

bool SettingsStore::write(const Config &config)
{
    try {
        config.write();
        m_config = config;
        watch();
        return true;
    } catch (const UserError &error) {
        setProblem(m_isReadable, error.errorDescription());
        return false;
    }
}

void SettingsStore::setProblem(bool isReadable, const QString &sentence)
{
    const bool isNew = isReadable != m_isReadable || sentence != m_problem;
    m_isReadable = isReadable;
    m_problem = sentence;
    if (isNew) {
        Q_EMIT problemChanged();
    }
}

// The folder tells of a file that is put in another's place, the file itself of one that is written in place.
void SettingsStore::watch()
{
    for (const QString &path : {Config::directory(), Config::file()}) {
        const bool isWatched = m_watcher.files().contains(path) || m_watcher.directories().contains(path);
        if (!isWatched && QFileInfo::exists(path)) {
            m_watcher.addPath(path);
        }
    }
}

} // namespace vesk
