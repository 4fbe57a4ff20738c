#pragma once

#include <memory>
#include <pulse/pulseaudio.h>

namespace vesk {

struct PulseDeleter {
    void operator()(pa_threaded_mainloop *loop) const { pa_threaded_mainloop_free(loop); }
    void operator()(pa_context *context) const { pa_context_unref(context); }
    void operator()(pa_stream *stream) const { pa_stream_unref(stream); }
    void operator()(pa_operation *operation) const { pa_operation_unref(operation); }
    void operator()(pa_proplist *list) const { pa_proplist_free(list); }
};

/// What libpulse hands out, with its own way to end. To be ended under the loop's lock, except the loop.
template <typename T>
using PulsePointer = std::unique_ptr<T, PulseDeleter>;

/// Holds the loop's lock: its thread calls nothing meanwhile. Never on the loop's own thread, which holds it.
class PulseLock {
public:
    explicit PulseLock(pa_threaded_mainloop *loop)
        : m_loop(loop)
    {
        pa_threaded_mainloop_lock(m_loop);
    }
    ~PulseLock() { pa_threaded_mainloop_unlock(m_loop); }
    PulseLock(const PulseLock &) = delete;
    PulseLock &operator=(const PulseLock &) = delete;

private:
    pa_threaded_mainloop *m_loop;
};

} // namespace vesk
