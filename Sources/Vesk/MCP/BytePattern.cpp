#include "MCP/BytePattern.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace vesk {

namespace {

constexpr std::ptrdiff_t Lanes = 16;
constexpr std::ptrdiff_t Block = 4 * Lanes;
// The compiler's portable vectors: one instruction an operation on every processor that has such.
using Vector = unsigned char __attribute__((vector_size(Lanes)));

Vector load(const char *from)
{
    Vector vector;
    std::memcpy(&vector, from, sizeof vector);
    return vector;
}

bool isAnySet(Vector mask)
{
    std::array<std::uint64_t, 2> halves = {};
    std::memcpy(halves.data(), &mask, sizeof mask);
    return (halves[0] | halves[1]) != 0;
}

/// How seldom a byte occurs in people's notes, roughly: the more, the better to look for.
int rarity(unsigned char byte)
{
    constexpr std::string_view LettersByFrequency = "etaoinshrdlucmfwypvbgkjqxz";
    if (byte >= 0x80) {
        return byte >= 0xC0 ? 0 : 3; // the first byte of a letter says only which alphabet
    }
    if (byte == ' ') {
        return 0;
    }
    const std::size_t place = LettersByFrequency.find(static_cast<char>(byte | 0x20));
    return place == std::string_view::npos ? 4 : 1 + static_cast<int>(place) / 4;
}

} // namespace

BytePattern::BytePattern(std::vector<QByteArray> places)
    : m_places(std::move(places))
    , m_allowed(m_places.size())
{
    std::vector<std::size_t> candidates;
    for (std::size_t place = 0; place < m_places.size(); ++place) {
        for (const char byte : m_places[place]) {
            m_allowed[place][static_cast<unsigned char>(byte)] = true;
        }
        if (m_places[place].size() <= 2) {
            candidates.push_back(place);
        }
    }
    const auto rarer = [this](std::size_t a, std::size_t b) {
        return rarity(static_cast<unsigned char>(m_places[a].front()))
            > rarity(static_cast<unsigned char>(m_places[b].front()));
    };
    std::stable_sort(candidates.begin(), candidates.end(), rarer);
    for (std::size_t i = 0; i < 2 && !candidates.empty(); ++i) {
        const std::size_t place = candidates[std::min(i, candidates.size() - 1)];
        const QByteArray &bytes = m_places[place];
        m_probes.push_back(
            {place, {static_cast<unsigned char>(bytes.front()), static_cast<unsigned char>(bytes.back())}});
    }
}

bool BytePattern::standsAt(const char *at) const
{
    for (std::size_t place = 0; place < m_allowed.size(); ++place) {
        if (!m_allowed[place][static_cast<unsigned char>(at[place])]) {
            return false;
        }
    }
    return true;
}

bool BytePattern::isIn(QByteArrayView bytes) const
{
    const auto length = static_cast<qsizetype>(m_places.size());
    const char *at = bytes.begin();
    const char *const last = bytes.end() - length; // where it may begin at the latest
    if (bytes.size() < length) {
        return false;
    }
    if (!m_probes.empty()) {
        const Probe &one = m_probes.front();
        const Probe &two = m_probes.back();
        const auto hits = [&one, &two](const char *block) {
            const Vector first = load(block + one.place);
            const Vector second = load(block + two.place);
            return reinterpret_cast<Vector>(((first == one.bytes[0]) | (first == one.bytes[1]))
                                            & ((second == two.bytes[0]) | (second == two.bytes[1])));
        };
        for (; last - at >= Block; at += Block) {
            if (isAnySet((hits(at) | hits(at + Lanes)) | (hits(at + 2 * Lanes) | hits(at + 3 * Lanes)))
                && std::any_of(at, at + Block, [this](const char &place) { return standsAt(&place); })) {
                return true;
            }
        }
    }
    for (; at <= last; ++at) {
        if (standsAt(at)) {
            return true;
        }
    }
    return false;
}

} // namespace vesk
