#pragma once

#include "Platform/AudioConverter.h"

namespace vesk {

/// Converters of libswresample. Any number of channels becomes any other by their average: every output
/// channel then carries the mean of all input channels.
class FfmpegAudioConverters final : public AudioConverters {
public:
    FfmpegAudioConverters();

    std::unique_ptr<AudioConverter> make(const AudioFormat &from, const AudioFormat &to) override;
};

} // namespace vesk
