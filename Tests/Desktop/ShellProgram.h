#pragma once

#include "Desktop/Process.h"

namespace vesk::test {

/// The program of Peers/Shell.cpp: the indicator and the status item, in a process of their own, so that they
/// are seen from outside as a person sees them.
class ShellProgram {
public:
    explicit ShellProgram(const QMap<QString, QString> &environment = {});

    /// A command, see Shell.cpp; returns when it has been obeyed.
    void say(const QString &command);

    /// The next thing that the menu called; empty when it called nothing.
    QByteArray called(std::chrono::milliseconds limit = std::chrono::seconds(20));

private:
    Process m_process;
    QByteArrayList m_called;
};

} // namespace vesk::test
