#pragma once

#include "Platform/AudioFiles.h"
#include "Platform/Linux/Speech/FfmpegPointers.h"

namespace vesk {

/// What a file's own headers say about lengths. Made before FFmpeg looks further into the file, because
/// afterwards its findings and guesses stand in the same fields.
class FfmpegAnnouncements {
public:
    explicit FfmpegAnnouncements(const AVFormatContext &file);

    /// How long this stream should be, to be measured against; nothing when no header says it.
    std::optional<AudioDuration> of(const AVStream &stream) const;

private:
    std::vector<std::optional<AudioDuration>> m_ofStreams;
};

/// What the person may be told: an announcement, or what FFmpeg found; never what it guessed from the bit
/// rate.
std::optional<AudioDuration> ffmpegDuration(const AVFormatContext &file, const AVStream &stream,
                                            std::optional<AudioDuration> announced);

} // namespace vesk
