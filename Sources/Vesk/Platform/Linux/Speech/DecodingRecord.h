#pragma once

#include "Platform/AudioFiles.h"

namespace vesk {

/// What was heard of a file and what was not, noted while it is decoded, for the sentence at its end.
class DecodingRecord {
public:
    /// Sound was decoded. `start` is its time by the file's own clock, if it has one; suspect sound may be
    /// noise.
    void noteSound(std::optional<AudioDuration> start, AudioDuration length, bool isSuspect);

    /// Something could not be read or decoded.
    void noteLoss() { ++m_lossesSinceSound; }

    /// The library complained and went on.
    void noteComplaint() { m_hasComplaints = m_hasComplaintsSinceSound = true; }

    /// Reading ended before the end of the file.
    void noteGivingUp() { m_isDamaged = true; }

    bool hasLosses() const { return m_lossesSinceSound > 0; }

    /// A sentence for the person when not everything was heard. `announced` is the length that the sound
    /// should have, `ofFile` the length of the whole file.
    std::optional<QString> shortfall(const QString &name, std::optional<AudioDuration> announced,
                                     std::optional<AudioDuration> ofFile) const;

private:
    AudioDuration m_decoded{0};
    std::optional<AudioDuration> m_firstAt; ///< the time of the first sound by the file's clock
    std::optional<AudioDuration> m_clock;   ///< the same for the end of the last
    AudioDuration m_reached{0};             ///< how far into the file, pauses included
    int m_lossesSinceSound = 0;
    bool m_hasComplaints = false;
    bool m_hasComplaintsSinceSound = false;
    bool m_isDamaged = false;
};

} // namespace vesk
