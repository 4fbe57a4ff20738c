#pragma once

#include <QDir>
#include <QFile>
#include <QHash>

#include <unistd.h>

/// What a running program costs, by its process id.
namespace vesk::ProcessFigures {

inline QByteArray content(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The number behind a name at the beginning of a line.
inline qint64 number(const QByteArray &lines, const QByteArray &name)
{
    const qsizetype at = lines.indexOf(QByteArray('\n' + name));
    return at < 0 ? 0 : lines.mid(at + 1 + name.size(), 40).simplified().split(' ').value(0).toLongLong();
}

/// Megabytes (MiB) that would be free if it ended: the private ones and its share of the others.
inline double memory(qint64 process)
{
    const QByteArray lines = content(QStringLiteral("/proc/%1/smaps_rollup").arg(process));
    return static_cast<double>(number(lines, "Pss:")) / 1024;
}

/// Seconds of processor time so far, of all its threads.
inline double processorTime(qint64 process)
{
    // The second field, the program's name, may hold blanks.
    const QByteArray line = content(QStringLiteral("/proc/%1/stat").arg(process));
    const QList<QByteArray> fields = line.mid(line.lastIndexOf(')') + 2).split(' ');
    return (fields.value(11).toDouble() + fields.value(12).toDouble())
        / static_cast<double>(sysconf(_SC_CLK_TCK));
}

/// How often each of its threads has gone to sleep and been woken. By thread, because one that ends takes its
/// number along.
inline QHash<QString, qint64> wakeUps(qint64 process)
{
    QHash<QString, qint64> counts;
    const QDir tasks(QStringLiteral("/proc/%1/task").arg(process));
    for (const QString &task : tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        const QByteArray lines = content(tasks.filePath(task + QStringLiteral("/status")));
        counts[task] = number(lines, "voluntary_ctxt_switches:");
    }
    return counts;
}

inline qint64 wakeUpsSince(const QHash<QString, qint64> &before, qint64 process)
{
    qint64 sum = 0;
    const QHash<QString, qint64> now = wakeUps(process);
    for (auto thread = now.cbegin(); thread != now.cend(); ++thread) {
        sum += thread.value() - before.value(thread.key());
    }
    return sum;
}

} // namespace vesk::ProcessFigures
