#include "Desktop/ShellProgram.h"

#include <stdexcept>

namespace vesk::test {

ShellProgram::ShellProgram(const QMap<QString, QString> &environment)
    : m_process(QStringLiteral(VESK_TEST_SHELL), {{}, QProcess::SeparateChannels, {}, environment})
{
    if (m_process.readLine() != "ready") {
        throw std::runtime_error("the shell does not start");
    }
}

void ShellProgram::say(const QString &command)
{
    m_process.write(command.toUtf8() + '\n');
    for (QByteArray line = m_process.readLine(); line != "done"; line = m_process.readLine()) {
        m_called.append(line);
    }
}

QByteArray ShellProgram::called(std::chrono::milliseconds limit)
{
    if (!m_called.isEmpty()) {
        return m_called.takeFirst();
    }
    try {
        return m_process.readLine(limit);
    } catch (const std::runtime_error &) {
        return {}; // nothing in time
    }
}

} // namespace vesk::test
