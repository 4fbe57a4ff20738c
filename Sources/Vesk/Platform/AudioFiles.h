#pragma once

#include "Foundation/UserError.h"
#include "Platform/AudioBlock.h"

#include <chrono>
#include <memory>
#include <optional>

namespace vesk {

using AudioDuration = std::chrono::duration<double>; ///< seconds of sound

/// A sound file that cannot be read or written. The sentence names the file and says what is wrong.
class AudioFileError final : public SentenceError {
public:
    using SentenceError::SentenceError;
};

/// The sound of one file, from its beginning to its end. Reading blocks on the disk; used by one thread at a
/// time.
class AudioFileReader {
public:
    virtual ~AudioFileReader() = default;

    /// The format of every block.
    virtual const AudioFormat &format() const = 0;

    /// How long the file says it is; nothing when it does not say or only guesses.
    virtual std::optional<AudioDuration> duration() const = 0;

    /// The next frames, at least one; nothing at the end. Damaged stretches are passed over. Throws
    /// AudioFileError when reading fails for good.
    virtual std::optional<AudioBlock> read() = 0;

    /// After the end: a sentence for the person when not everything that the file announces could be read,
    /// else nothing.
    virtual std::optional<QString> shortfall() const = 0;
};

/// How a new sound file is encoded: AAC in an MPEG-4 container, the only kind that is written.
struct AudioFileSettings {
    AudioFormat format;
    int bitRate = 0; ///< bits a second, all channels together
};

/// A sound file that is being made. Used by one thread at a time.
class AudioFileWriter {
public:
    /// Closes as close() does, where nobody hears of a failure.
    virtual ~AudioFileWriter() = default;

    /// The format in which write() takes blocks.
    virtual const AudioFormat &processingFormat() const = 0;

    /// Encodes a block. Whatever becomes of the process, the file holds all but the last second of what was
    /// written. Throws AudioFileError when the file takes no more, as on a full disk: what was written before
    /// stays whole, and every later call throws again.
    virtual void write(const AudioBlock &block) = 0;

    /// Completes the file. Throws AudioFileError when not all of it could be written. Once.
    virtual void close() = 0;
};

/// Opens sound files of every kind that the person may have, the sound of videos included. Callable from any
/// thread.
class AudioFiles {
public:
    virtual ~AudioFiles() = default;

    /// Opens nothing but this file, whatever its content asks for. Throws AudioFileError.
    virtual std::unique_ptr<AudioFileReader> openForReading(const QString &path) = 0;

    /// Makes a new file that nobody else may read. Throws AudioFileError, also when the file exists.
    virtual std::unique_ptr<AudioFileWriter> openForWriting(const QString &path,
                                                            const AudioFileSettings &settings) = 0;
};

} // namespace vesk
