#include "CommandLine/ProgramRun.h"

#include "Support/Await.h"

#include <QProcess>

namespace vesk {

namespace {

ProgramRun run(const QString &program, const QStringList &words)
{
    ProgramRun result;
    QProcess process;
    process.start(program, words);
    // Long, because loading the model under a sanitizer is; only a failing test waits for it.
    constexpr std::chrono::minutes Limit(2);
    if (!eventually([&process] { return process.state() == QProcess::NotRunning; }, Limit)) {
        process.kill();
        process.waitForFinished();
        return result;
    }
    if (process.exitStatus() == QProcess::NormalExit) {
        result.status = process.exitCode();
    }
    result.output = QString::fromUtf8(process.readAllStandardOutput());
    result.errors = QString::fromUtf8(process.readAllStandardError());
    return result;
}

} // namespace

ProgramRun runVesk(const QStringList &words) { return run(QStringLiteral(VESK_TEST_PROGRAM), words); }

ProgramRun runVeskInShell(const QString &line)
{
    qputenv("VESK", VESK_TEST_PROGRAM);
    return run(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), line});
}

} // namespace vesk
