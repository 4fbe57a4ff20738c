#include "Dictation/Resampler.h"

namespace vesk {

Resampler::Resampler(AudioFormat target, AudioConverters &converters)
    : m_target(target)
    , m_converters(converters)
{
}

qsizetype Resampler::capacity(qsizetype frames, int sampleRate, int targetRate)
{
    constexpr qsizetype Slack = 32;
    return static_cast<qsizetype>(static_cast<double>(targetRate) * static_cast<double>(frames) / sampleRate)
        + Slack;
}

std::optional<AudioBlock> Resampler::convert(const AudioBlock &block)
{
    if (!m_converter || m_converter->inputFormat() != block.format) {
        m_converter = m_converters.make(block.format, m_target);
    }
    if (!m_converter) {
        return std::nullopt;
    }
    AudioBlock converted =
        m_converter->convert(block, capacity(block.frames(), block.format.sampleRate, m_target.sampleRate));
    if (converted.frames() == 0) {
        return std::nullopt;
    }
    return converted;
}

} // namespace vesk
