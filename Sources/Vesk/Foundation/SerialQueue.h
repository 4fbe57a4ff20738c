#pragma once

#include <condition_variable>
#include <deque>
#include <exception>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

namespace vesk {

/// Runs blocks one after the other on a thread of its own, in the order in which they were handed over. On
/// std::thread and without Qt, so that the thread sanitizer sees every hand-over. async() and sync() may be
/// called from any thread; the destructor runs what is queued and joins.
class SerialQueue {
public:
    /// `label` names the thread, cut by the system where it must (15 bytes on Linux).
    explicit SerialQueue(std::string label);
    ~SerialQueue();
    SerialQueue(const SerialQueue &) = delete;
    SerialQueue &operator=(const SerialQueue &) = delete;

    const std::string &label() const { return m_label; }

    /// Returns at once. The block must not throw: nobody is left to catch it, so the program ends.
    void async(std::function<void()> block);

    /// Waits until the block, and all before it, have run; what the block throws comes out here. Never from a
    /// block of the same queue: that would wait for itself.
    void sync(const std::function<void()> &block);

private:
    void run();

    std::string m_label;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<std::function<void()>> m_blocks;
    bool m_isEnding = false;
    std::thread m_thread; // last: it starts when all it uses is there
};

} // namespace vesk
