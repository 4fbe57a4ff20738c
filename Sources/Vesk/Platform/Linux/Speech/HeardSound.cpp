#include "Platform/Linux/Speech/HeardSound.h"

#include <algorithm>

namespace vesk {

namespace {

constexpr AudioFormat Heard = {StretchCutter::SampleRate, 1};

} // namespace

HeardSound::HeardSound(AudioConverters &converters)
    : m_converters(converters)
{
}

void HeardSound::add(const AudioBlock &block)
{
    if (block.frames() == 0) {
        return;
    }
    if (!m_converter || m_converter->inputFormat() != block.format) {
        flush();
        m_converter = m_converters.make(block.format, Heard);
    }
    if (m_converter) {
        // Room for the block and for whatever the filter can hold back.
        const qsizetype capacity =
            block.frames() * Heard.sampleRate / block.format.sampleRate + Heard.sampleRate;
        addConverted(m_converter->convert(block, capacity));
    }
}

void HeardSound::flush()
{
    if (m_converter) {
        addConverted(m_converter->flush());
    }
}

std::optional<std::span<const float>> HeardSound::nextWindow()
{
    if (total() - m_examined < StretchCutter::Window) {
        return std::nullopt;
    }
    const auto first = static_cast<std::size_t>(m_examined - m_firstSample);
    m_examined += StretchCutter::Window;
    return std::span(m_samples).subspan(first, StretchCutter::Window);
}

std::vector<float> HeardSound::samples(const Stretch &stretch) const
{
    const auto end = std::clamp<std::int64_t>(stretch.end - m_firstSample, 0, total() - m_firstSample);
    const auto begin = std::clamp<std::int64_t>(stretch.begin - m_firstSample, 0, end);
    return {m_samples.begin() + begin, m_samples.begin() + end};
}

void HeardSound::forgetBefore(std::int64_t sample)
{
    const std::int64_t unneeded = std::min(sample, m_examined) - m_firstSample;
    constexpr std::int64_t WorthMoving = 4 * StretchCutter::SampleRate;
    if (unneeded > WorthMoving) {
        m_samples.erase(m_samples.begin(), m_samples.begin() + unneeded);
        m_firstSample += unneeded;
    }
}

void HeardSound::addConverted(const AudioBlock &converted)
{
    m_samples.insert(m_samples.end(), converted.samples.begin(), converted.samples.end());
}

} // namespace vesk
