#pragma once

#include "Platform/AudioConverter.h"
#include "Platform/Linux/Speech/StretchCutter.h"

#include <optional>
#include <span>

namespace vesk {

/// A flow of sound in any format, as the recogniser wants it: 16 kHz, one channel, handed out in the
/// detector's windows and kept only as long as somebody may still ask for it. Used by one thread.
class HeardSound {
public:
    explicit HeardSound(AudioConverters &converters);

    void add(const AudioBlock &block);

    /// What the converter still holds. Nothing may be added after it.
    void flush();

    /// The next window that was not handed out, valid until the next call of another function; nothing while
    /// it is not complete.
    std::optional<std::span<const float>> nextWindow();

    /// A copy of what was heard there, as far as it is still kept.
    std::vector<float> samples(const Stretch &stretch) const;

    /// Nothing before this sample will be asked for.
    void forgetBefore(std::int64_t sample);

    /// Samples heard in all.
    std::int64_t total() const { return m_firstSample + static_cast<std::int64_t>(m_samples.size()); }

private:
    void addConverted(const AudioBlock &converted);

    AudioConverters &m_converters;
    std::unique_ptr<AudioConverter> m_converter;
    std::vector<float> m_samples; ///< the sound from m_firstSample on
    std::int64_t m_firstSample = 0;
    std::int64_t m_examined = 0; ///< how much of the sound was handed out in windows
};

} // namespace vesk
