#include "Platform/Linux/Speech/FfmpegFloatSamples.h"

#include <cmath>

namespace vesk {

namespace {

void silenceNonsense(std::vector<float> &samples)
{
    // Far above every integer scale that a careless program may have written as floating point.
    constexpr float LoudestSample = 1e12F;
    for (float &sample : samples) {
        if (!(std::abs(sample) <= LoudestSample)) { // true for NaN too
            sample = 0;
        }
    }
}

} // namespace

AudioBlock FfmpegFloatSamples::from(const AVFrame &frame)
{
    const Source source = {frame.format, {frame.sample_rate, frame.ch_layout.nb_channels}};
    AudioBlock block = {source.format, {}};
    if (!source.format.isUsable() || frame.nb_samples <= 0 || !prepareFor(source)) {
        return block;
    }
    block.samples.resize(static_cast<std::size_t>(frame.nb_samples) * source.format.channels);
    auto *target = reinterpret_cast<uint8_t *>(block.samples.data());
    auto **planes = const_cast<const uint8_t **>(frame.extended_data);
    const int frames = swr_convert(m_context.get(), &target, frame.nb_samples, planes, frame.nb_samples);
    block.samples.resize(static_cast<std::size_t>(std::max(frames, 0)) * source.format.channels);
    silenceNonsense(block.samples);
    return block;
}

bool FfmpegFloatSamples::prepareFor(const Source &source)
{
    if (m_source != source) {
        m_source = source;
        m_context =
            allocateConversion(static_cast<AVSampleFormat>(source.sampleType), source.format, source.format);
        if (m_context && swr_init(m_context.get()) < 0) {
            m_context.reset();
        }
    }
    return m_context != nullptr;
}

} // namespace vesk
