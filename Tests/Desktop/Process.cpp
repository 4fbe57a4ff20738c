#include "Desktop/Process.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <csignal>
#include <stdexcept>
#include <sys/prctl.h>

namespace vesk::test {

using namespace Qt::StringLiterals;

namespace {

[[noreturn]] void fail(const QString &sentence) { throw std::runtime_error(sentence.toStdString()); }

} // namespace

Process::Process(const QString &program, Options options)
    : m_program(program)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (auto entry = options.environment.cbegin(); entry != options.environment.cend(); ++entry) {
        if (entry.value().isEmpty()) {
            environment.remove(entry.key());
        } else {
            environment.insert(entry.key(), entry.value());
        }
    }
    m_process.setProcessEnvironment(environment);
    m_process.setProcessChannelMode(options.channels);
    m_process.setChildProcessModifier([beforeExec = std::move(options.beforeExec)] {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        setsid(); // a signal to the group of the test does not reach it
        if (beforeExec) {
            beforeExec();
        }
    });
    if (const QString logs = qEnvironmentVariable("VESK_TEST_LOGS"); !logs.isEmpty()) {
        m_process.setStandardErrorFile(logs + u'/' + QFileInfo(program).fileName() + u".log"_s,
                                       QIODevice::Append);
    }
    m_process.start(program, options.arguments);
    if (!m_process.waitForStarted(10'000)) {
        fail(program + u" could not be started: "_s + m_process.errorString());
    }
}

Process::~Process()
{
    if (!isRunning()) {
        return;
    }
    signal(SIGCONT); // a stopped program cannot end
    m_process.terminate();
    if (!m_process.waitForFinished(2'000)) {
        kill();
    }
}

QByteArray Process::readLine(std::chrono::milliseconds limit)
{
    const QDeadlineTimer deadline(limit);
    while (!m_process.canReadLine()) {
        if (deadline.hasExpired() || !isRunning()) {
            fail(m_program + u" did not say what was expected of it"_s);
        }
        m_process.waitForReadyRead(static_cast<int>(std::min<qint64>(deadline.remainingTime(), 200)));
    }
    return m_process.readLine().trimmed();
}

void Process::write(const QByteArray &bytes)
{
    m_process.write(bytes);
    m_process.waitForBytesWritten(5'000);
}

void Process::signal(int number) const
{
    if (isRunning()) {
        ::kill(static_cast<pid_t>(id()), number);
    }
}

void Process::kill()
{
    m_process.kill();
    m_process.waitForFinished(5'000);
}

QByteArray run(const QString &program, const QStringList &arguments, std::chrono::milliseconds limit)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(static_cast<int>(limit.count()))) {
        process.kill();
        process.waitForFinished(5'000);
        fail(program + u" did not end in time"_s);
    }
    if (process.exitCode() != 0) {
        fail(program + u' ' + arguments.join(u' ') + u" failed: "_s
             + QString::fromLocal8Bit(process.readAllStandardError()));
    }
    return process.readAllStandardOutput();
}

int countRunning(const QByteArray &name)
{
    int count = 0;
    for (const QString &id : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs)) {
        QFile command(QString(u"/proc/" + id + u"/comm"));
        QFile environment(QString(u"/proc/" + id + u"/environ"));
        if (command.open(QIODevice::ReadOnly) && command.readAll().trimmed() == name
            && environment.open(QIODevice::ReadOnly)
            && environment.readAll().contains(qgetenv("XDG_RUNTIME_DIR"))) {
            ++count;
        }
    }
    return count;
}

} // namespace vesk::test
