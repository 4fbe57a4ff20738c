#include "Platform/Linux/Accessibility/Processes.h"

#include <QFile>
#include <QFileInfo>

namespace vesk::Processes {

namespace {

using namespace Qt::StringLiterals;

constexpr int LongestLine = 20; // of ancestors

QString folder(qint64 process) { return u"/proc/"_s + QString::number(process); }

qint64 parentOf(qint64 process)
{
    QFile file(folder(process) + u"/stat"_s);
    if (!file.open(QIODevice::ReadOnly)) {
        return 0;
    }
    // "1234 (any name, parentheses too) S 1 ...": the parent is the second word behind the name.
    const QByteArray line = file.readAll();
    return line.mid(line.lastIndexOf(')') + 2).split(' ').value(1).toLongLong();
}

bool descends(qint64 process, qint64 ancestor)
{
    for (int i = 0; i < LongestLine && process > 1; ++i) {
        process = parentOf(process);
        if (process == ancestor) {
            return true;
        }
    }
    return false;
}

} // namespace

QString executableName(qint64 process)
{
    return QFileInfo(QFile::symLinkTarget(folder(process) + u"/exe"_s)).fileName();
}

bool areRelated(qint64 one, qint64 other) { return descends(one, other) || descends(other, one); }

} // namespace vesk::Processes
