#pragma once

#include "Platform/Linux/Speech/HeardSound.h"
#include "Platform/Linux/Speech/VoiceActivity.h"

#include <functional>

namespace vesk {

/// Turns a flow of sound in any format into the stretches that are to be recognised, keeping no more of it
/// than the stretch that is still open. Used by one thread.
class StretchReader {
public:
    /// Given each stretch with its samples (16 kHz, one channel).
    using Handler = std::function<void(Stretch, std::vector<float>)>;

    StretchReader(AudioConverters &converters, VoiceActivity &voiceActivity, Handler onStretch);

    void add(const AudioBlock &block);
    void finish();

private:
    void examine();
    void give(const std::vector<Stretch> &stretches);

    VoiceActivity &m_voiceActivity;
    Handler m_onStretch;
    StretchCutter m_cutter;
    HeardSound m_sound;
};

} // namespace vesk
