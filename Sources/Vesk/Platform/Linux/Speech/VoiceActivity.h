#pragma once

#include "Foundation/UserError.h"

#include <memory>
#include <span>

namespace vesk {

/// Tells speech from everything else, window by window. Holds a small network (2 MB); used by one thread.
class VoiceActivity {
public:
    /// How soon the answer follows the sound, in seconds: never sooner than the window in which it changes.
    struct Delays {
        float speech;
        float silence;
    };
    static constexpr Delays Afterwards = {0.1F, 0.25F}; ///< those that StretchCutter counts back
    /// Those of LiveStretches: a pause is told at its second window. With none at all the detector overlooks
    /// most pauses.
    static constexpr Delays Live = {0.03F, 0.02F};

    /// Loads silero VAD from the file. Throws VeskError::noSpeechModel when it is missing or refused.
    VoiceActivity(const QString &modelFile, Delays delays);
    ~VoiceActivity();
    VoiceActivity(const VoiceActivity &) = delete;
    VoiceActivity &operator=(const VoiceActivity &) = delete;

    /// Whether someone speaks, as of this window of StretchCutter::Window samples (16 kHz, one channel).
    bool isSpeech(std::span<const float> window);

private:
    struct Implementation;
    std::unique_ptr<Implementation> m_implementation;
};

/// A measure of a window's loudness.
float energyOf(std::span<const float> window);

} // namespace vesk
