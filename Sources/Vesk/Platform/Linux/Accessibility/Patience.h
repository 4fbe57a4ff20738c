#pragma once

#include "Platform/Accessibility.h"

#include <algorithm>
#include <chrono>

namespace vesk {

/// How long one exchange with another program may still take.
struct Patience {
    using Clock = std::chrono::steady_clock;

    std::chrono::milliseconds call;
    Clock::time_point end;

    static Patience from(Clock::time_point start, AccessibilityLimits limits)
    {
        return {limits.call, start + limits.all};
    }

    /// For the next call; not positive when time is up.
    std::chrono::milliseconds left() const
    {
        return std::min(call, std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()));
    }
};

} // namespace vesk
