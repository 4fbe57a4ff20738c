#pragma once

#include "Platform/AudioConverter.h"

#include <optional>

namespace vesk {

/// Brings blocks of sound into the format that a consumer needs, whatever format they come in. Used by one
/// thread at a time; the converter, and what its filter remembers, is kept while the input format stays the
/// same.
class Resampler {
public:
    Resampler(AudioFormat target, AudioConverters &converters);

    /// The converted block; nothing when no frame came out or the format cannot be converted.
    std::optional<AudioBlock> convert(const AudioBlock &block);

    /// How many frames (target rate) one converted block may have: the rates' proportion, rounded down, and
    /// 32 frames for what the filter still held.
    static qsizetype capacity(qsizetype frames, int sampleRate, int targetRate);

private:
    AudioFormat m_target;
    AudioConverters &m_converters;
    std::unique_ptr<AudioConverter> m_converter;
};

} // namespace vesk
