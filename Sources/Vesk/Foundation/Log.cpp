#include "Foundation/Log.h"

#include "Foundation/Descriptor.h"
#include "Foundation/HomeDirectory.h"
#include "Foundation/SerialQueue.h"

#include <QDateTime>
#include <QFile>

#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>

namespace vesk::Log {

namespace {

SerialQueue &queue()
{
    // Never destroyed: another thread may still log while the process takes itself down. Its lines are
    // drained by the exit handler instead.
    static SerialQueue *const theQueue = [] {
        auto *made = new SerialQueue("vesk.log");
        file(); // made before the exit handler is, so that it is destroyed after that has run
        std::atexit(flush);
        return made;
    }();
    return *theQueue;
}

void append(const QByteArray &line)
{
    // Opened for each line, so that other tools may move or delete the file at any time. In append mode, so
    // that the lines of two processes never overwrite each other.
    const Descriptor descriptor(::open(QFile::encodeName(file()).constData(),
                                       O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (descriptor.number() >= 0) {
        writeAll(descriptor.number(), line); // a full disk loses the line: nobody is left to tell
    }
}

} // namespace

const QString &file()
{
    static const QString path = homeDirectory() + u"/Library/Logs/Vesk.log";
    return path;
}

void write(const QString &message)
{
    const QString stamp = QDateTime::currentDateTimeUtc().toString(Qt::ISODate);
    queue().async([stamp, message] { append((stamp + u' ' + message + u'\n').toUtf8()); });
}

void flush()
{
    queue().sync([] {});
}

} // namespace vesk::Log
