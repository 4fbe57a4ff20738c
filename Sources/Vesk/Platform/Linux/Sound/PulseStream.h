#pragma once

#include "Platform/AudioEngine.h"
#include "Platform/Linux/Sound/PulseInventory.h"
#include "Platform/Linux/Sound/PulsePointers.h"

#include <condition_variable>
#include <mutex>
#include <optional>

namespace vesk {

/// One recording of one microphone, from its connection to its end. Made, used and ended under the loop's
/// lock, except awaitOpening(). Its callbacks come on the loop's thread and must not end it.
class PulseStream {
public:
    struct Callbacks {
        /// Frames in the stream's format; null samples stand for a hole of that length.
        std::function<void(const float *samples, qsizetype frames, AudioEngine::CaptureTime)> sound;
        /// Having been open, it will deliver nothing any more.
        std::function<void()> lost;
    };

    /// Throws SoundServerError when the server's library refuses at once.
    PulseStream(pa_context *context, const PulseMicrophone &microphone, const AudioFormat &format,
                Callbacks callbacks);
    ~PulseStream();
    PulseStream(const PulseStream &) = delete;
    PulseStream &operator=(const PulseStream &) = delete;

    /// 0 when the server has connected it, the server's reason (PA_ERR_…) when it will not, nothing when it
    /// did not answer before the limit. Without the loop's lock.
    std::optional<int> awaitOpening(std::chrono::milliseconds limit) const;

    /// It records, or may soon.
    bool isGood() const { return !m_isLost; }

private:
    void connect(const AudioFormat &format);
    void stateChanged();
    void lose(int error);
    bool settle(int outcome);
    void read();

    std::string m_source;
    Callbacks m_callbacks;
    PulsePointer<pa_stream> m_stream;
    pa_sample_spec m_sampleSpec = {};
    bool m_isLost = false;

    mutable std::mutex m_mutex; ///< guards m_outcome
    mutable std::condition_variable m_settled;
    std::optional<int> m_outcome;
};

} // namespace vesk
