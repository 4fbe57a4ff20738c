#pragma once

#include <QSocketNotifier>

#include <array>
#include <functional>

namespace vesk {

/// Turns the signals by which a session or a terminal ends a program into a call on the event loop, so that
/// it ends as if the person had quit it. One at a time; main thread.
class QuitSignals {
public:
    explicit QuitSignals(std::function<void()> quit);
    ~QuitSignals();
    QuitSignals(const QuitSignals &) = delete;
    QuitSignals &operator=(const QuitSignals &) = delete;

private:
    std::array<int, 2> m_pipe;
    QSocketNotifier m_notifier;
};

} // namespace vesk
