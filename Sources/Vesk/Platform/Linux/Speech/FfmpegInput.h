#pragma once

#include "Foundation/Descriptor.h"
#include "Platform/Linux/Speech/FfmpegPointers.h"

#include <QString>

namespace vesk {

/// One regular file, opened by us and read by FFmpeg through our descriptor: FFmpeg never sees the name, so
/// nothing in it can be taken for an address. The file may grow or shrink meanwhile.
class FfmpegInput {
public:
    /// Throws AudioFileError when there is no such file, it is no regular file, it is empty, or the system
    /// refuses it.
    explicit FfmpegInput(const QString &path);
    ~FfmpegInput() = default;
    FfmpegInput(const FfmpegInput &) = delete;
    FfmpegInput &operator=(const FfmpegInput &) = delete;

    /// What a sentence calls the file.
    const QString &name() const { return m_name; }

    AVIOContext *io() { return m_io.get(); }

    /// Throws AudioFileError when the system could not read on. FFmpeg itself may have taken that for the
    /// end.
    void check() const;

private:
    static int read(void *self, uint8_t *buffer, int size);
    static int64_t seek(void *self, int64_t offset, int whence);

    QString m_name;
    Descriptor m_descriptor;
    int m_errorNumber = 0;
    FfmpegPointer<AVIOContext> m_io;
};

} // namespace vesk
