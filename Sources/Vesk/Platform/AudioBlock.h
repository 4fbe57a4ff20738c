#pragma once

#include <QtGlobal>

#include <vector>

namespace vesk {

/// Sound as it moves inside the program: 32-bit floating point samples, full scale at ±1, interleaved by
/// frame.
struct AudioFormat {
    int sampleRate = 0; ///< frames a second
    int channels = 0;

    bool isUsable() const { return sampleRate > 0 && channels > 0; }
    friend bool operator==(const AudioFormat &, const AudioFormat &) = default;
};

/// Some frames of sound that follow each other.
struct AudioBlock {
    AudioFormat format;
    std::vector<float> samples; ///< frames() × format.channels values

    qsizetype frames() const
    {
        return format.channels > 0 ? static_cast<qsizetype>(samples.size()) / format.channels : 0;
    }
};

} // namespace vesk
