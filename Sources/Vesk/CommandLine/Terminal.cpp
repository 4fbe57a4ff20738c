#include "CommandLine/Terminal.h"

#include "Foundation/Descriptor.h"
#include "Foundation/Text.h"

#include <fcntl.h>
#include <unistd.h>

namespace vesk {

QString OutputError::errorDescription() const
{
    return u"Standard output cannot be written: " + Text::systemReason(m_errorNumber);
}

void Terminal::print(const QString &line)
{
    clearProgress();
    if (const int error = writeAll(STDOUT_FILENO, QString(line + u'\n').toUtf8()); error != 0) {
        throw OutputError(error);
    }
}

void Terminal::complain(const QString &line)
{
    clearProgress();
    writeAll(STDERR_FILENO, QString(line + u'\n').toUtf8());
}

void Terminal::showProgress(const QString &line)
{
    if (::isatty(STDERR_FILENO) == 0) {
        return;
    }
    clearProgress();
    writeAll(STDERR_FILENO, line.toUtf8());
    m_showsProgress = true;
}

void Terminal::clearProgress()
{
    if (m_showsProgress) {
        writeAll(STDERR_FILENO, "\r\033[K"); // back to the beginning, clear to the end of the line
        m_showsProgress = false;
    }
}

void occupyStandardDescriptors()
{
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(descriptor, F_GETFD) < 0) {
            // It takes the lowest free number, which is this one. Opened in the wrong direction on purpose:
            // reading from, or writing to, a stream that was closed stays an error.
            ::open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
        }
    }
}

} // namespace vesk
