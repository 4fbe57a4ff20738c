#pragma once

#include "Foundation/Task.h"

#include <QDateTime>

#include <chrono>

namespace vesk {

/// Time, for whoever measures it or waits. Main thread.
class Clock {
public:
    using Monotonic = std::chrono::steady_clock::time_point;

    virtual ~Clock() = default;

    /// The wall clock, UTC.
    virtual QDateTime now() const = 0;

    /// Time that only goes forward, for measuring.
    virtual Monotonic monotonic() const = 0;

    /// Ends after the given time, on the calling thread's event loop.
    virtual Task<> after(std::chrono::milliseconds time) = 0;
};

} // namespace vesk
