#pragma once

#include "Foundation/ReferenceDate.h"

#include <algorithm>
#include <tuple>
#include <vector>

namespace vesk {

/// The newest few of many notes, whatever is kept of each. Those of one moment stand in the folder's order.
template <typename Kept>
class NewestNotes {
public:
    struct Place {
        ReferenceDate created;
        std::size_t index = 0; ///< in the folder

        friend bool operator<(const Place &a, const Place &b)
        {
            return std::tie(b.created, a.index) < std::tie(a.created, b.index);
        }
    };

    /// `most` is how many are kept, at least one.
    explicit NewestNotes(std::size_t most)
        : m_most(most)
    {
    }

    /// Whether a note of that place would be kept.
    bool isWanted(const Place &place) const { return m_heap.size() < m_most || place < m_heap.front().first; }

    void add(const Place &place, Kept kept)
    {
        if (!isWanted(place)) {
            return;
        }
        if (m_heap.size() == m_most) {
            std::pop_heap(m_heap.begin(), m_heap.end(), isNewer);
            m_heap.pop_back();
        }
        m_heap.emplace_back(place, std::move(kept));
        std::push_heap(m_heap.begin(), m_heap.end(), isNewer);
    }

    /// Takes over what others kept.
    void take(NewestNotes &others)
    {
        for (auto &[place, kept] : others.m_heap) {
            add(place, std::move(kept));
        }
        others.m_heap.clear();
    }

    /// Newest first.
    std::vector<Kept> take()
    {
        std::sort_heap(m_heap.begin(), m_heap.end(), isNewer);
        std::vector<Kept> kept;
        kept.reserve(m_heap.size());
        for (auto &entry : m_heap) {
            kept.push_back(std::move(entry.second));
        }
        return kept;
    }

private:
    using Entry = std::pair<Place, Kept>;

    static bool isNewer(const Entry &a, const Entry &b) { return a.first < b.first; }

    std::size_t m_most;
    std::vector<Entry> m_heap; // the oldest in front
};

} // namespace vesk
