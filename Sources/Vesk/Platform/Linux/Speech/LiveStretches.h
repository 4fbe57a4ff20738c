#pragma once

#include "Platform/Linux/Speech/StretchCutter.h"

namespace vesk {

/// What the sound heard so far asks for.
struct LiveStep {
    enum class Kind {
        speculate, ///< recognise it ahead of time: if nothing more is said, this is the stretch
        complete,  ///< the stretch is over; the same bounds as the last speculation's mean that one
        settle,    ///< whatever is said from now on is not joined to the stretch completed last
    };

    Kind kind = Kind::settle;
    Stretch stretch;
    std::int64_t pauseBefore = 0; ///< samples without speech between the stretch before and this one

    friend bool operator==(const LiveStep &, const LiveStep &) = default;
};

/// Divides the sound of someone who speaks now into stretches, so that next to nothing is left to recognise
/// when the person stops. Where StretchCutter waits for the end of a pause to make long stretches, this one
/// speculates: at the first silent window the stretch may be over, and at a pause of 0.3 s it is, once it is
/// long enough for the recogniser. Pure arithmetic over the answers of a voice activity detector; used by one
/// thread. What it says depends on the sound alone, not on how fast it arrives.
class LiveStretches {
public:
    static constexpr int SampleRate = StretchCutter::SampleRate;
    static constexpr int Window = StretchCutter::Window;

    struct Rules {
        /// The detector says "speech" at the second window of it at the earliest, and the first window of a
        /// soft beginning is below its threshold.
        std::int64_t speechDelay = 3 * Window;
        std::int64_t padding = SampleRate * 3 / 10; ///< sound kept before and after what was said
        std::int64_t leastSpeech = 3 * Window;      ///< less of it is a click or a breath
        std::int64_t worthEnding = 3 * SampleRate;  ///< a stretch so long ends at the next ending pause
        std::int64_t endingPause = SampleRate * 3 / 10;
        std::int64_t longPause = 2 * SampleRate; ///< ends a stretch of any length
        std::int64_t eager = 20 * SampleRate;    ///< a stretch so long ends at the first silent window
        std::int64_t longest = 28 * SampleRate;  ///< someone who never pauses is cut here
        std::int64_t settledPause = SampleRate * 12 / 10; ///< SentenceJoin::LongestPause
    };

    explicit LiveStretches(Rules rules);
    LiveStretches()
        : LiveStretches(Rules())
    {
    }

    /// One more window, of whom the detector says whether someone speaks in it. `energy` (any measure that
    /// grows with loudness) decides where someone who never pauses is cut.
    std::optional<LiveStep> add(bool isSpeech, float energy);

    /// The end of the sound, after `samples` of it in all: the last stretch, if one is open.
    std::optional<LiveStep> finish(std::int64_t samples);

    /// No stretch to come begins before this sample.
    std::int64_t neededFrom() const;

private:
    struct Open {
        std::int64_t spokenFrom = 0;
        std::int64_t spokenTo = 0;
        std::int64_t speech = 0;            ///< samples in windows with speech
        std::optional<Stretch> speculation; ///< covers all that was said
    };
    struct Quietest {
        std::int64_t position;
        float energy;
    };

    std::optional<LiveStep> addSpeech(float energy);
    std::optional<LiveStep> addSilence();
    std::optional<LiveStep> cutLongSpeech(float energy);
    std::optional<LiveStep> settle();
    LiveStep complete(Stretch stretch);
    std::int64_t beginOfOpen() const;
    std::int64_t neededPause(std::int64_t length) const;

    Rules m_rules;
    std::int64_t m_position = 0; ///< samples heard
    std::int64_t m_floor = 0;    ///< where the last stretch given out ended: none reaches back over it
    std::optional<Open> m_open;
    std::optional<std::int64_t> m_spokenBefore; ///< where speech ended in the stretch given out last
    bool m_isSettled = true;
    std::optional<Quietest> m_quietest; ///< the best place for a forced cut so far
};

} // namespace vesk
