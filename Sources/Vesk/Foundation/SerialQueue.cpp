#include "Foundation/SerialQueue.h"

#include "Foundation/ThreadName.h"

#include <cassert>
#include <utility>

namespace vesk {

SerialQueue::SerialQueue(std::string label)
    : m_label(std::move(label))
    , m_thread([this] { run(); })
{
}

SerialQueue::~SerialQueue()
{
    {
        const std::lock_guard lock(m_mutex);
        m_isEnding = true;
    }
    m_changed.notify_one();
    m_thread.join();
}

void SerialQueue::async(std::function<void()> block)
{
    {
        const std::lock_guard lock(m_mutex);
        m_blocks.push_back(std::move(block));
    }
    m_changed.notify_one();
}

void SerialQueue::sync(const std::function<void()> &block)
{
    assert(std::this_thread::get_id() != m_thread.get_id());
    std::mutex mutex;
    std::condition_variable done;
    bool isDone = false;
    std::exception_ptr failure;
    async([&] {
        try {
            block();
        } catch (...) {
            failure = std::current_exception();
        }
        // Told under the lock: the waiting frame, and with it this condition, is gone as soon as it is
        // released.
        const std::lock_guard lock(mutex);
        isDone = true;
        done.notify_one();
    });
    std::unique_lock lock(mutex);
    done.wait(lock, [&] { return isDone; });
    if (failure) {
        std::rethrow_exception(failure);
    }
}

void SerialQueue::run()
{
    setCurrentThreadName(m_label);
    std::unique_lock lock(m_mutex);
    while (true) {
        m_changed.wait(lock, [this] { return m_isEnding || !m_blocks.empty(); });
        if (m_blocks.empty()) {
            return;
        }
        const auto block = std::move(m_blocks.front());
        m_blocks.pop_front();
        lock.unlock();
        block();
        lock.lock();
    }
}

} // namespace vesk
