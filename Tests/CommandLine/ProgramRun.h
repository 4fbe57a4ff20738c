#pragma once

#include <QStringList>

namespace vesk {

/// What one start of the built program left behind.
struct ProgramRun {
    int status = -1; ///< the exit status; -1 when it was killed or did not end
    QString output;  ///< standard output
    QString errors;  ///< standard error
};

/// Runs the program with these words in the test's own home and waits for its end, while a server of the test
/// goes on answering.
ProgramRun runVesk(const QStringList &words);

/// The same through a shell: `line` may redirect and change the environment; "$VESK" is the program.
ProgramRun runVeskInShell(const QString &line);

} // namespace vesk
