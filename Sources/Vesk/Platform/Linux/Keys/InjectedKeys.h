#pragma once

#include <chrono>
#include <deque>
#include <mutex>

namespace vesk {

/// The key events that this program made itself, so that who listens to keys can leave them out. Shared by
/// the key poster and the key monitor; from any thread.
class InjectedKeys {
public:
    using Time = std::chrono::steady_clock::time_point;

    /// How long an event may take to come back before it counts as lost: the server answers within
    /// milliseconds, and an expectation that stays would swallow a key of the person's.
    static constexpr std::chrono::seconds Lifetime{1};

    /// To be called before the event is made: it may come back sooner than the call that makes it.
    void expect(int keyCode, bool isPress, Time now = std::chrono::steady_clock::now());

    /// Whether this event is one of ours; each expectation stands for one event.
    bool take(int keyCode, bool isPress, Time now = std::chrono::steady_clock::now());

private:
    struct Expected {
        int keyCode = 0;
        bool isPress = false;
        Time since;
    };

    std::mutex m_mutex;
    std::deque<Expected> m_expected; ///< oldest first
};

} // namespace vesk
