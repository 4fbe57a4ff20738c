#include "Platform/Linux/Sound/PulseTimer.h"

#include <utility>

namespace vesk {

PulseTimer::PulseTimer(pa_mainloop_api *api, std::function<void()> callback)
    : m_api(api)
    , m_callback(std::move(callback))
{
}

PulseTimer::~PulseTimer()
{
    if (m_event != nullptr) {
        m_api->time_free(m_event);
    }
}

void PulseTimer::after(std::chrono::milliseconds time)
{
    timeval at = {};
    pa_timeval_add(pa_gettimeofday(&at), std::chrono::microseconds(time).count());
    if (m_event != nullptr) {
        m_api->time_restart(m_event, &at);
        return;
    }
    const auto fired = [](pa_mainloop_api *, pa_time_event *, const timeval *, void *self) {
        static_cast<PulseTimer *>(self)->m_callback();
    };
    m_event = m_api->time_new(m_api, &at, fired, this);
}

} // namespace vesk
