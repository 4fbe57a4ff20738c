#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <optional>

namespace vesk {

/// Hands values from one thread to another and makes the faster one wait: what lies between them never grows
/// beyond the capacity. Without Qt, so that the thread sanitizer sees every hand-over.
template <typename T>
class BoundedQueue {
public:
    explicit BoundedQueue(std::size_t capacity)
        : m_capacity(capacity)
    {
    }

    /// Waits for room. False when the queue is closed: the value is dropped and nobody will ask for more.
    bool push(T value)
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this] { return m_isClosed || m_values.size() < m_capacity; });
        if (m_isClosed) {
            return false;
        }
        m_values.push_back(std::move(value));
        m_changed.notify_all();
        return true;
    }

    /// Waits for a value. Nothing when the queue is closed and empty.
    std::optional<T> pop()
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this] { return m_isClosed || !m_values.empty(); });
        if (m_values.empty()) {
            return std::nullopt;
        }
        std::optional<T> value(std::move(m_values.front()));
        m_values.pop_front();
        m_changed.notify_all();
        return value;
    }

    /// No more values go in; those inside can still be taken.
    void close()
    {
        const std::lock_guard lock(m_mutex);
        m_isClosed = true;
        m_changed.notify_all();
    }

    /// Closes and drops what is inside: the work is no longer wanted.
    void abandon()
    {
        const std::lock_guard lock(m_mutex);
        m_isClosed = true;
        m_values.clear();
        m_changed.notify_all();
    }

private:
    const std::size_t m_capacity;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<T> m_values;
    bool m_isClosed = false;
};

} // namespace vesk
