#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace vesk {

/// A part of the sound that is recognised in one go, in samples from the beginning: [begin, end).
struct Stretch {
    std::int64_t begin = 0;
    std::int64_t end = 0;

    friend bool operator==(const Stretch &, const Stretch &) = default;
};

/// Divides sound at its pauses into stretches that a recogniser is good at. Pure arithmetic over the answers
/// of a voice activity detector, one for each window; used by one thread. The lengths are those that gave the
/// fewest wrong words with Moonshine base: long enough for context, below the 30 s where it begins to lose
/// lines.
class StretchCutter {
public:
    static constexpr int SampleRate = 16000;
    static constexpr int Window = 512; ///< samples a detector's answer stands for

    struct Rules {
        /// The detector says "speech" only after so much of it and "silence" only after so much; both are
        /// counted back.
        std::int64_t speechDelay = SampleRate / 10 + 2 * Window;
        std::int64_t silenceDelay = SampleRate / 4;
        std::int64_t padding = SampleRate * 3 / 10;  ///< sound kept before and after what was said
        std::int64_t joinedPause = 2 * SampleRate;   ///< a shorter pause does not end a stretch that has room
        std::int64_t joinedLength = 20 * SampleRate; ///< pauses are bridged up to this length
        std::int64_t longest = 28 * SampleRate;      ///< someone who never pauses is cut here
    };

    explicit StretchCutter(Rules rules);
    StretchCutter()
        : StretchCutter(Rules())
    {
    }

    /// One more window, of whom the detector says whether someone speaks in it. `energy` (any measure that
    /// grows with loudness) decides where someone who never pauses is cut. Gives the stretches that are
    /// complete with it.
    std::vector<Stretch> add(bool isSpeech, float energy);

    /// The end of the sound, after `samples` of it in all.
    std::vector<Stretch> finish(std::int64_t samples);

    /// No stretch to come begins before this sample.
    std::int64_t neededFrom() const;

private:
    struct Quietest {
        std::int64_t position;
        float energy;
    };

    void beginSpeech(std::int64_t at, std::vector<Stretch> &complete);
    void endSpeech(std::int64_t at, std::vector<Stretch> &complete);
    void cutLongSpeech(float energy, std::vector<Stretch> &complete);
    Stretch padded(Stretch spoken, std::int64_t nextBegin) const;
    void emitOpen(std::int64_t nextBegin, std::vector<Stretch> &complete);

    Rules m_rules;
    std::int64_t m_position = 0;   ///< samples heard
    std::int64_t m_floor = 0;      ///< where the last stretch given out ended: none reaches back over it
    std::optional<Stretch> m_open; ///< what was said, without padding, of the stretch that may still grow
    std::optional<std::int64_t> m_speechFrom; ///< where the speech that goes on now began
    std::optional<Quietest> m_quietest;       ///< the best place for a forced cut so far
};

} // namespace vesk
