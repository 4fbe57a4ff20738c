#pragma once

#include <QString>

#include <utility>

namespace vesk {

/// Whether a service of this computer can work and, if not, why: a sentence for the person. A plain value.
class Availability {
public:
    static Availability available() { return Availability(QString()); }
    static Availability unavailable(QString reason) { return Availability(std::move(reason)); }

    bool isAvailable() const { return m_reason.isEmpty(); }
    /// Empty when the service can work.
    const QString &reason() const { return m_reason; }

    friend bool operator==(const Availability &, const Availability &) = default;

private:
    explicit Availability(QString reason)
        : m_reason(std::move(reason))
    {
    }
    QString m_reason;
};

} // namespace vesk
