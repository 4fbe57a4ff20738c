#pragma once

#include <QByteArray>

#include <array>
#include <vector>

namespace vesk {

/// A short run of bytes, each of which may be one of several, to be looked for in megabytes. A plain value;
/// finding is a pure function.
class BytePattern {
public:
    /// One set of bytes for each place; at least one place.
    explicit BytePattern(std::vector<QByteArray> places);

    const std::vector<QByteArray> &places() const { return m_places; }

    bool isIn(QByteArrayView bytes) const;

private:
    bool standsAt(const char *at) const;

    std::vector<QByteArray> m_places;
    std::vector<std::array<bool, 256>> m_allowed; // the same, to be asked quickly
    /// The two places that are compared first, many positions at a time, and the two bytes of each.
    struct Probe {
        std::size_t place = 0;
        std::array<unsigned char, 2> bytes = {};
    };
    std::vector<Probe> m_probes; // two, or none when every place has more than two bytes
};

} // namespace vesk
