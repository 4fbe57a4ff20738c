#include "Support/ManualClock.h"

#include <algorithm>
#include <utility>

namespace vesk {

using std::chrono::duration_cast;
using std::chrono::milliseconds;

struct ManualClock::Awaiter {
    ManualClock &clock;
    Monotonic due;

    bool await_ready() const noexcept { return false; }
    void await_suspend(std::coroutine_handle<> handle) const
    {
        auto &waiters = clock.m_waiters;
        const auto later = std::upper_bound(waiters.begin(), waiters.end(), due,
                                            [](Monotonic time, const Waiter &w) { return time < w.due; });
        waiters.insert(later, {due, handle});
    }
    void await_resume() const noexcept {}
};

ManualClock::~ManualClock()
{
    for (const Waiter &waiter : std::exchange(m_waiters, {})) {
        waiter.handle.resume();
    }
}

QDateTime ManualClock::now() const
{
    const QDateTime start(QDate(2026, 1, 2), QTime(3, 4, 5), Qt::UTC);
    return start.addMSecs(duration_cast<milliseconds>(m_now - Monotonic(std::chrono::hours(1))).count());
}

Task<> ManualClock::after(milliseconds time)
{
    Awaiter awaiter = {*this, m_now + time};
    co_await awaiter;
}

void ManualClock::advance(milliseconds time)
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

std::vector<milliseconds> ManualClock::waiting() const
{
    std::vector<milliseconds> times;
    for (const Waiter &waiter : m_waiters) {
        times.push_back(duration_cast<milliseconds>(waiter.due - m_now));
    }
    return times;
}

} // namespace vesk
