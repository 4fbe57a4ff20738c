#pragma once

#include <QString>

namespace vesk {

/// A moment as the data files hold it: seconds, with their fraction, since 1 January 2001 00:00 UTC. A double
/// and not a QDateTime, which knows only milliseconds: a file that is read and written again keeps every bit.
struct ReferenceDate {
    /// 2001-01-01T00:00:00Z in Unix time.
    static constexpr double Epoch = 978'307'200;

    double seconds = 0;

    static ReferenceDate now();

    /// "2026-01-31T09:05:07Z": UTC, the fraction cut off. Years beyond four digits are shown as the nearest
    /// that has them.
    QString iso8601() const;

    friend auto operator<=>(const ReferenceDate &, const ReferenceDate &) = default;
};

} // namespace vesk
