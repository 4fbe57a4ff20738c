#pragma once

#include "Foundation/Descriptor.h"
#include "Platform/Linux/Speech/FfmpegPointers.h"

#include <QString>

namespace vesk {

/// A new file, made by us for us alone and written by FFmpeg through our descriptor. When the system takes no
/// more, the file is cut back to what was whole before the write that failed.
class FfmpegOutput {
public:
    /// Throws AudioFileError, also when the file exists.
    explicit FfmpegOutput(const QString &path);
    FfmpegOutput(const FfmpegOutput &) = delete;
    FfmpegOutput &operator=(const FfmpegOutput &) = delete;

    const QString &path() const { return m_path; }
    AVIOContext *io() { return m_io.get(); }

    /// Whether the system has refused a write.
    bool hasFailed() const { return m_errorNumber != 0; }

    /// Closes the file. Throws AudioFileError when it, or a write before, was refused.
    void close();

    /// What a failed write is told with.
    [[noreturn]] void refuse() const;

private:
    static int write(void *self, uint8_t *bytes, int size);
    static int64_t seek(void *self, int64_t offset, int whence);

    QString m_path;
    Descriptor m_descriptor;
    int m_errorNumber = 0;
    FfmpegPointer<AVIOContext> m_io;
};

} // namespace vesk
