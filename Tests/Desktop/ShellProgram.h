#pragma once

#include "Desktop/Process.h"

#include <stdexcept>

namespace vesk::test {

/// The program of Peers/Shell.cpp: the indicator and the status item, in a process of their own, so that they
/// are seen from outside as a person sees them.
class ShellProgram {
public:
    explicit ShellProgram(const QMap<QString, QString> &environment = {})
        : m_process(QStringLiteral(VESK_TEST_SHELL), QStringList(), environment)
    {
        m_process.readLine(); // "ready"
    }

    /// A command, see Shell.cpp; returns when it has been obeyed.
    void say(const QString &command)
    {
        m_process.write(command.toUtf8() + '\n');
        for (QByteArray line = m_process.readLine(); line != "done"; line = m_process.readLine()) {
            m_called.append(line);
        }
    }

    /// The next thing that the menu called; empty when it called nothing.
    QByteArray called(std::chrono::milliseconds limit = std::chrono::seconds(20))
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

private:
    Process m_process;
    QByteArrayList m_called;
};

} // namespace vesk::test
