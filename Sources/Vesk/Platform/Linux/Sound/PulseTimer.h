#pragma once

#include <chrono>
#include <functional>
#include <pulse/pulseaudio.h>

namespace vesk {

/// Calls back once on the loop's thread, after a time. Made, armed and ended under the loop's lock.
class PulseTimer {
public:
    PulseTimer(pa_mainloop_api *api, std::function<void()> callback);
    ~PulseTimer();
    PulseTimer(const PulseTimer &) = delete;
    PulseTimer &operator=(const PulseTimer &) = delete;

    /// Replaces the time that is still running.
    void after(std::chrono::milliseconds time);

private:
    pa_mainloop_api *m_api;
    pa_time_event *m_event = nullptr; ///< made at the first after(); disabled once it has fired
    std::function<void()> m_callback;
};

} // namespace vesk
