#pragma once

#include <QProcess>
#include <QStringList>

namespace vesk {

/// What one start of the built program left behind.
struct ProgramRun {
    int status = -1; ///< the exit status; -1 when it was killed or did not end
    QString output;  ///< standard output
    QString errors;  ///< standard error

    /// Standard error without what the sanitizers may say of others' libraries; what a person reads.
    QStringList errorLines() const;
};

/// Runs the program with these words in the test's own home and waits for its end, while a server of the test
/// goes on answering. `environment` replaces variables; a null value removes one.
ProgramRun runVesk(const QStringList &words, const QList<std::pair<QString, QString>> &environment = {});

/// The same through a shell: `line` may redirect; "$VESK" is the program.
ProgramRun runVeskInShell(const QString &line);

} // namespace vesk
