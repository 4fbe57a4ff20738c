#pragma once

#include <QByteArray>
#include <QString>

#include <chrono>
#include <optional>
#include <vector>

namespace vesk {

/// Starts the program that goes on offering `packed` (see KeptSelections) and waits until it says that it
/// does, at most for `limit`. It belongs to no terminal and outlives this process. False when it does not
/// offer anything by then.
bool startClipboardKeeper(const QString &program, const QByteArray &packed, std::chrono::milliseconds limit);

/// A keeper that waits in the background and offers its content when this process is killed, if nobody else
/// owns the selections by then. One thread.
class StandByKeeper {
public:
    StandByKeeper() = default;
    /// Sends it away: who ends by itself has no need of it.
    ~StandByKeeper() { dismiss(); }
    StandByKeeper(const StandByKeeper &) = delete;
    StandByKeeper &operator=(const StandByKeeper &) = delete;

    /// Starts one in place of the one that stands by now; `window` owns the selections meanwhile. Does not
    /// wait for it. False when none could be started.
    bool replace(const QString &program, const QByteArray &packed, unsigned window);
    void dismiss();

private:
    int m_word = -1;            ///< our end of its standard output
    std::vector<int> m_running; ///< processes that have not been seen to end
};

} // namespace vesk
