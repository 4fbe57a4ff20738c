#pragma once

#include "Platform/AudioBlock.h"

#include <memory>

namespace vesk {

/// Changes sample rate and channel count, block by block, keeping its filter's state in between. Used by one
/// thread at a time.
class AudioConverter {
public:
    virtual ~AudioConverter() = default;

    virtual const AudioFormat &inputFormat() const = 0;

    /// Converts one block of the input format without waiting for more; at most `capacity` frames (output
    /// rate) come out, the rest with later blocks. A result without frames means that nothing came out, or
    /// that the conversion failed.
    virtual AudioBlock convert(const AudioBlock &block, qsizetype capacity) = 0;

    /// What the filter still holds at the end of the sound. Nothing may be converted after it.
    virtual AudioBlock flush() = 0;
};

/// Makes converters. Callable from any thread.
class AudioConverters {
public:
    virtual ~AudioConverters() = default;

    /// Null when there is no way from one format to the other.
    virtual std::unique_ptr<AudioConverter> make(const AudioFormat &from, const AudioFormat &to) = 0;
};

} // namespace vesk
