#pragma once

#include "Platform/AudioBlock.h"
#include "Platform/Linux/Speech/FfmpegPointers.h"

namespace vesk {

/// Turns decoded frames of any sample type into interleaved floating point, at the frame's own rate and
/// channel count.
class FfmpegFloatSamples {
public:
    /// No frames when the frame makes no sense. What is not a number, or beyond every recording's scale,
    /// becomes silence.
    AudioBlock from(const AVFrame &frame);

private:
    struct Source {
        int sampleType = AV_SAMPLE_FMT_NONE;
        AudioFormat format;

        friend bool operator==(const Source &, const Source &) = default;
    };
    bool prepareFor(const Source &source);

    Source m_source;
    FfmpegPointer<SwrContext> m_context;
};

} // namespace vesk
