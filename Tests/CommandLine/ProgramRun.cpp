#include "CommandLine/ProgramRun.h"

#include "Support/Await.h"

#include <QProcessEnvironment>

namespace vesk {

namespace {

ProgramRun finish(QProcess &process)
{
    ProgramRun run;
    // Long, because loading the model under a sanitizer is; only a failing test waits for it.
    constexpr std::chrono::minutes Limit(2);
    if (!eventually([&process] { return process.state() == QProcess::NotRunning; }, Limit)) {
        process.kill();
        process.waitForFinished();
        return run;
    }
    if (process.exitStatus() == QProcess::NormalExit) {
        run.status = process.exitCode();
    }
    run.output = QString::fromUtf8(process.readAllStandardOutput());
    run.errors = QString::fromUtf8(process.readAllStandardError());
    return run;
}

QProcessEnvironment changed(const QList<std::pair<QString, QString>> &changes)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const auto &[name, value] : changes) {
        if (value.isNull()) {
            environment.remove(name);
        } else {
            environment.insert(name, value);
        }
    }
    return environment;
}

} // namespace

QStringList ProgramRun::errorLines() const { return errors.split(u'\n', Qt::SkipEmptyParts); }

ProgramRun runVesk(const QStringList &words, const QList<std::pair<QString, QString>> &environment)
{
    QProcess process;
    process.setProcessEnvironment(changed(environment));
    process.start(QStringLiteral(VESK_TEST_PROGRAM), words);
    return finish(process);
}

ProgramRun runVeskInShell(const QString &line)
{
    QProcess process;
    process.setProcessEnvironment(changed({{QStringLiteral("VESK"), QStringLiteral(VESK_TEST_PROGRAM)}}));
    process.start(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), line});
    return finish(process);
}

} // namespace vesk
