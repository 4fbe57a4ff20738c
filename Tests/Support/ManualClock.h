#pragma once

#include "Platform/Clock.h"

#include <algorithm>
#include <coroutine>
#include <utility>
#include <vector>

namespace vesk {

/// Time that stands still until a test moves it. Who waits is woken inside advance(), in the order of the
/// times waited for. Main thread.
class ManualClock final : public Clock {
public:
    ManualClock() = default;
    /// Wakes whoever still waits, so that cancelled work can end.
    ~ManualClock() override
    {
        for (const Waiter &waiter : std::exchange(m_waiters, {})) {
            waiter.handle.resume();
        }
    }
    ManualClock(const ManualClock &) = delete;
    ManualClock &operator=(const ManualClock &) = delete;

    QDateTime now() const override
    {
        const QDateTime start(QDate(2026, 1, 2), QTime(3, 4, 5), Qt::UTC);
        return start.addMSecs(milliseconds(m_now - Monotonic(std::chrono::hours(1))));
    }
    Monotonic monotonic() const override { return m_now; }
    Task<> after(std::chrono::milliseconds time) override
    {
        Awaiter awaiter = {*this, m_now + time};
        co_await awaiter;
    }

    /// Moves the time, waking on the way also those who begin to wait meanwhile.
    void advance(std::chrono::milliseconds time)
    {
        const Monotonic end = m_now + time;
        while (!m_waiters.empty() && m_waiters.front().due <= end) {
            const Waiter next = m_waiters.front();
            m_waiters.erase(m_waiters.begin());
            m_now = std::max(m_now, next.due);
            next.handle.resume();
        }
        m_now = end;
    }

    /// How long each waiter has yet to wait, the shortest first.
    std::vector<std::chrono::milliseconds> waiting() const
    {
        std::vector<std::chrono::milliseconds> times;
        for (const Waiter &waiter : m_waiters) {
            times.emplace_back(milliseconds(waiter.due - m_now));
        }
        return times;
    }

private:
    struct Waiter {
        Monotonic due;
        std::coroutine_handle<> handle;
    };
    struct Awaiter {
        ManualClock &clock;
        Monotonic due;

        bool await_ready() const noexcept { return false; }
        void await_suspend(std::coroutine_handle<> handle) const
        {
            auto &waiters = clock.m_waiters;
            const auto later = std::ranges::upper_bound(waiters, due, {}, &Waiter::due);
            waiters.insert(later, {due, handle});
        }
        void await_resume() const noexcept {}
    };

    static qint64 milliseconds(Monotonic::duration time)
    {
        return std::chrono::duration_cast<std::chrono::milliseconds>(time).count();
    }

    Monotonic m_now = Monotonic(std::chrono::hours(1));
    std::vector<Waiter> m_waiters; // by due time, then by arrival
};

} // namespace vesk
