#include "Platform/Qt/SystemClock.h"

#include <QCoroTimer>
#include <QTimer>

namespace vesk {

QDateTime SystemClock::now() const { return QDateTime::currentDateTimeUtc(); }

Clock::Monotonic SystemClock::monotonic() const { return std::chrono::steady_clock::now(); }

Task<> SystemClock::after(std::chrono::milliseconds time)
{
    QTimer timer;
    timer.setSingleShot(true);
    timer.setTimerType(Qt::PreciseTimer);
    timer.start(time);
    co_await timer;
}

} // namespace vesk
