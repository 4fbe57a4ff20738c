#include "Foundation/ReferenceDate.h"

#include <QDateTime>

#include <algorithm>
#include <chrono>
#include <cmath>

namespace vesk {

namespace {

// The first and the last second of the years that have four digits, in Unix time.
constexpr double FirstSecond = -62'135'596'800;
constexpr double LastSecond = 253'402'300'799;

} // namespace

ReferenceDate ReferenceDate::now()
{
    const std::chrono::duration<double> sinceUnix = std::chrono::system_clock::now().time_since_epoch();
    return {sinceUnix.count() - Epoch};
}

QString ReferenceDate::iso8601() const
{
    const double unixTime = std::clamp(std::floor(seconds + Epoch), FirstSecond, LastSecond);
    return QDateTime::fromSecsSinceEpoch(static_cast<qint64>(unixTime), Qt::UTC).toString(Qt::ISODate);
}

} // namespace vesk
