#pragma once

#include "Platform/Clock.h"

#include <coroutine>
#include <vector>

namespace vesk {

/// Time that stands still until a test moves it. Who waits is woken inside advance(), in the order of the
/// times waited for. Main thread.
class ManualClock final : public Clock {
public:
    ManualClock() = default;
    /// Wakes whoever still waits, so that cancelled work can end.
    ~ManualClock() override;
    ManualClock(const ManualClock &) = delete;
    ManualClock &operator=(const ManualClock &) = delete;

    QDateTime now() const override;
    Monotonic monotonic() const override { return m_now; }
    Task<> after(std::chrono::milliseconds time) override;

    /// Moves the time, waking on the way also those who begin to wait meanwhile.
    void advance(std::chrono::milliseconds time);

    /// How long each waiter has yet to wait, the shortest first.
    std::vector<std::chrono::milliseconds> waiting() const;

private:
    struct Waiter {
        Monotonic due;
        std::coroutine_handle<> handle;
    };
    struct Awaiter;

    Monotonic m_now = Monotonic(std::chrono::hours(1));
    std::vector<Waiter> m_waiters; // by due time, then by arrival
};

} // namespace vesk
