#include "Dictation/HistoryStore.h"

#include "Foundation/Config.h"
#include "Foundation/Files.h"
#include "Foundation/Json.h"
#include "Foundation/Storage.h"

#include <QFile>

#include <algorithm>
#include <cerrno>
#include <ranges>

namespace vesk {

namespace {

/// Newest first.
QList<Dictation> decoded(const QByteArray &content)
{
    QList<Dictation> entries;
    for (const QByteArray &line : content.split('\n')) {
        if (line.trimmed().isEmpty()) {
            continue;
        }
        try {
            entries.append(Dictation::decode(line));
        } catch (const DecodingError &) {
            // a damaged line costs only its own entry
        }
    }
    std::ranges::reverse(entries);
    return entries;
}

/// A crash, or an editor, may have left the last line without its end; the next one would be lost with it.
bool endsInsideLine(const QString &path)
{
    QFile stored(path);
    return stored.open(QIODevice::ReadOnly) && stored.seek(stored.size() - 1) && stored.read(1) != "\n";
}

} // namespace

HistoryStore::HistoryStore(QObject *parent)
    : QObject(parent)
{
    load();
}

void HistoryStore::load()
{
    try {
        m_entries = decoded(Files::read(file()));
        m_isLoaded = true;
    } catch (const FileError &error) {
        m_isLoaded = error.errorNumber() == ENOENT;
    }
}

const QString &HistoryStore::file()
{
    static const QString path = Config::directory() + QStringLiteral("/history.jsonl");
    return path;
}

void HistoryStore::append(const Dictation &dictation)
{
    m_entries.prepend(dictation);
    const bool isFull = m_entries.size() > Limit;
    if (isFull) {
        m_entries.resize(Limit);
    }
    if (isFull && m_isLoaded) {
        // Qt's strings and lists are shared between threads without copying the text.
        m_files.async([entries = m_entries] {
            try {
                rewrite(entries);
            } catch (const FileError &) { // the file keeps its old entries and lacks the new one
            }
        });
    } else {
        m_files.async([dictation] {
            const QByteArray before = endsInsideLine(file()) ? "\n" : "";
            Storage::append(QByteArray(before + dictation.encode() + '\n'), file());
        });
    }
    Q_EMIT entriesChanged();
}

void HistoryStore::remove(const QUuid &id)
{
    if (m_entries.removeIf([&id](const Dictation &entry) { return entry.id == id; }) > 0) {
        if (m_isLoaded) {
            forgetting([entries = m_entries] { rewrite(entries); });
        }
        Q_EMIT entriesChanged();
    }
}

void HistoryStore::clear()
{
    m_entries.clear();
    m_isLoaded = true;
    forgetting([] { Files::remove(file()); });
    Q_EMIT entriesChanged();
}

void HistoryStore::flush()
{
    m_files.sync([] {});
}

void HistoryStore::forgetting(std::function<void()> work)
{
    m_files.async([this, work = std::move(work)] {
        try {
            work();
        } catch (const FileError &error) {
            const auto tell = [this, reason = error.errorDescription()] {
                load();
                Q_EMIT entriesChanged();
                Q_EMIT couldNotForget(reason);
            };
            QMetaObject::invokeMethod(this, tell, Qt::QueuedConnection);
        }
    });
}

void HistoryStore::rewrite(const QList<Dictation> &entries)
{
    QByteArray content;
    for (const Dictation &entry : entries | std::views::reverse) {
        content += entry.encode() + '\n';
    }
    Files::makeFolder(Config::directory());
    Files::replace(file(), content);
}

} // namespace vesk
