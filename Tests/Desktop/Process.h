#pragma once

#include <QMap>
#include <QProcess>

#include <chrono>
#include <functional>

namespace vesk::test {

/// A program that a test started: it dies with the test, however that ends, and is ended by its id alone.
/// What it prints to standard error goes to a file in the run's log folder.
class Process {
public:
    struct Options {
        QStringList arguments;
        QProcess::ProcessChannelMode channels = QProcess::SeparateChannels;
        /// Runs in the child between fork and exec; only what is safe there.
        std::function<void()> beforeExec;
        /// Added to the environment; an empty value removes the variable.
        QMap<QString, QString> environment;
    };

    /// Throws std::runtime_error when the program cannot be started.
    Process(const QString &program, Options options);
    Process(const QString &program, const QStringList &arguments,
            const QMap<QString, QString> &environment = {})
        : Process(program, Options{arguments, QProcess::SeparateChannels, {}, environment})
    {
    }
    /// Asks the program to end, and makes it end when it does not within two seconds.
    ~Process();
    Process(const Process &) = delete;
    Process &operator=(const Process &) = delete;

    qint64 id() const { return m_process.processId(); }
    bool isRunning() const { return m_process.state() == QProcess::Running; }

    /// The next line of standard output, without its end. Throws std::runtime_error when none comes.
    QByteArray readLine(std::chrono::milliseconds limit = std::chrono::seconds(20));
    void write(const QByteArray &bytes);
    /// The program reads the end of its standard input.
    void closeInput() { m_process.closeWriteChannel(); }

    /// Sends a signal: SIGSTOP and SIGCONT are how a program hangs and recovers.
    void signal(int number) const;

    /// Ends it now, without giving it a chance to clean up.
    void kill();

private:
    QString m_program;
    QProcess m_process;
};

/// Runs a program to its end and returns what it printed. Throws std::runtime_error when it fails or does not
/// end in time.
QByteArray run(const QString &program, const QStringList &arguments,
               std::chrono::milliseconds limit = std::chrono::seconds(20));

/// How many processes of this desktop have the name, which the kernel cuts after 15 bytes.
int countRunning(const QByteArray &name);

} // namespace vesk::test
