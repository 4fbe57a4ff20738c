#pragma once

#include "Platform/Clock.h"

namespace vesk {

/// The computer's own clock; Qt answers for every system. Needs an event loop for after().
class SystemClock final : public Clock {
public:
    QDateTime now() const override;
    Monotonic monotonic() const override;
    Task<> after(std::chrono::milliseconds time) override;
};

} // namespace vesk
