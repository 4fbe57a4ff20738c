#pragma once

#include "Dictation/AudioInput.h"
#include "Support/Tones.h"

#include <condition_variable>
#include <mutex>

namespace vesk::test {

/// Keeps what an AudioInput delivers, and waits for it.
class Recording {
public:
    /// To be given to AudioInput::start(); this object must outlive the recording.
    AudioInput::OnBuffer consumer()
    {
        return [this](const AudioBlock &block, float loudness) {
            const std::lock_guard lock(m_mutex);
            if (block.format != m_sound.format) {
                m_sound = {block.format, {}};
            }
            append(m_sound, block);
            m_loudness = loudness;
            m_changed.notify_all();
        };
    }

    /// Everything so far, since the format changed last.
    AudioBlock sound() const
    {
        const std::lock_guard lock(m_mutex);
        return m_sound;
    }

    float loudness() const
    {
        const std::lock_guard lock(m_mutex);
        return m_loudness;
    }

    /// Waits until so many frames have come in all; false when they do not.
    bool awaitFrames(qsizetype frames, std::chrono::milliseconds limit = std::chrono::seconds(30))
    {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, limit, [&] { return m_sound.frames() >= frames; });
    }

    /// Waits until the latest tenth of a second is this tone in every channel, as strong as SoundRig plays
    /// it; false when it does not come.
    bool awaitTone(double frequency, std::chrono::milliseconds limit = std::chrono::seconds(30))
    {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, limit, [&] { return isTone(frequency); });
    }

    /// The strongest the tone was in any twentieth of a second.
    double strongest(double frequency) const
    {
        const AudioBlock all = sound();
        const qsizetype length = all.format.sampleRate / 20;
        double strongest = 0;
        for (qsizetype first = 0; length > 0 && first + length <= all.frames(); first += length / 2) {
            strongest = std::max(strongest, amplitudeAt(part(all, first, length), frequency));
        }
        return strongest;
    }

private:
    bool isTone(double frequency) const
    {
        const qsizetype length = m_sound.format.sampleRate / 10;
        if (length == 0 || m_sound.frames() < length) {
            return false;
        }
        const AudioBlock latest = part(m_sound, m_sound.frames() - length, length);
        for (int channel = 0; channel < latest.format.channels; ++channel) {
            if (std::abs(amplitudeAt(latest, frequency, channel) - 0.5) > 0.02) {
                return false;
            }
        }
        return true;
    }

    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    AudioBlock m_sound;
    float m_loudness = 0;
};

} // namespace vesk::test
