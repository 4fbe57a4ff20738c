#include "Platform/Linux/Accessibility/ProgramNames.h"

#include "Platform/Linux/Accessibility/Processes.h"

#include <QCoroFuture>
#include <QDir>
#include <QLocale>
#include <QPromise>
#include <QStandardPaths>

namespace vesk {

namespace {

using namespace Qt::StringLiterals;
using Entries = std::shared_ptr<const DesktopEntries>;

QString locale() { return QLocale::system().uiLanguages().value(0).replace(u'-', u'_'); }

} // namespace

ProgramNames::ProgramNames(std::shared_ptr<SerialQueue> worker)
    : m_worker(std::move(worker))
    , m_folders(QStandardPaths::standardLocations(QStandardPaths::ApplicationsLocation))
{
    for (const QString &folder : std::as_const(m_folders)) {
        if (QDir(folder).exists()) {
            m_watcher.addPath(folder);
        }
    }
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, &ProgramNames::refresh);
}

void ProgramNames::refresh()
{
    m_isStale = m_isReading;
    if (!m_isReading) {
        m_isReading = true;
        launch(u"Reading the list of programs"_s, read(weak_from_this(), m_worker, m_folders));
    }
}

Task<> ProgramNames::read(std::weak_ptr<ProgramNames> names, std::shared_ptr<SerialQueue> worker,
                          QStringList folders)
{
    const auto promise = std::make_shared<QPromise<Entries>>();
    promise->start();
    const QFuture<Entries> future = promise->future();
    worker->async([promise, folders, locale = locale()] {
        promise->addResult(std::make_shared<const DesktopEntries>(DesktopEntries::read(folders, locale)));
        promise->finish();
    });
    const Entries entries = co_await future;
    if (const auto self = names.lock()) {
        self->m_entries = entries;
        self->m_isReading = false;
        if (self->m_isStale) {
            self->refresh();
        }
    }
}

const DesktopEntry *ProgramNames::find(const WindowDescription &window) const
{
    return m_entries ? m_entries->find(window, Processes::executableName(window.processId)) : nullptr;
}

} // namespace vesk
