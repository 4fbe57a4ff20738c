#pragma once

#include "Platform/AudioFiles.h"

namespace vesk {

/// Reads with FFmpeg what people have: recordings, music and the sound of videos, and writes recordings.
/// Kinds of files that refer to other files (playlists, manifests, session descriptions) are not among them.
class FfmpegAudioFiles final : public AudioFiles {
public:
    FfmpegAudioFiles();

    std::unique_ptr<AudioFileReader> openForReading(const QString &path) override;
    std::unique_ptr<AudioFileWriter> openForWriting(const QString &path,
                                                    const AudioFileSettings &settings) override;
};

} // namespace vesk
