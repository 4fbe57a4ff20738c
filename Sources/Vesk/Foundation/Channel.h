#pragma once

#include "Foundation/Task.h"

#include <QCoroFuture>
#include <QPromise>

#include <deque>
#include <exception>
#include <mutex>
#include <optional>

namespace vesk {

/// Brings values from worker threads to a coroutine, in order. push() and finish() from any thread; next()
/// from one thread with an event loop, one call at a time. The channel must outlive a next() that waits.
template <typename T>
class Channel {
public:
    void push(T value)
    {
        change([&] { m_values.push_back(std::move(value)); });
    }

    /// Nothing comes after it. A failure is thrown by the next() that would have found the end.
    void finish(std::exception_ptr failure = {})
    {
        change([&] {
            m_isFinished = true;
            m_failure = std::move(failure);
        });
    }

    /// The next value; nothing at the end.
    Task<std::optional<T>> next()
    {
        while (true) {
            QFuture<void> change;
            {
                const std::lock_guard lock(m_mutex);
                if (!m_values.empty()) {
                    std::optional<T> value(std::move(m_values.front()));
                    m_values.pop_front();
                    co_return value;
                }
                if (m_isFinished) {
                    if (m_failure) {
                        std::rethrow_exception(m_failure);
                    }
                    co_return std::nullopt;
                }
                m_waiter.emplace();
                m_waiter->start();
                change = m_waiter->future();
            }
            co_await change;
        }
    }

private:
    template <typename Change>
    void change(Change apply)
    {
        std::optional<QPromise<void>> waiter;
        {
            const std::lock_guard lock(m_mutex);
            apply();
            waiter.swap(m_waiter);
        }
        if (waiter) {
            waiter->finish(); // wakes the waiting coroutine through its thread's event loop
        }
    }

    std::mutex m_mutex;
    std::deque<T> m_values;
    bool m_isFinished = false;
    std::exception_ptr m_failure;
    std::optional<QPromise<void>> m_waiter;
};

} // namespace vesk
