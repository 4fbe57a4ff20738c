#include "Platform/Linux/Speech/FfmpegInput.h"

#include "Foundation/Text.h"
#include "Platform/AudioFiles.h"

#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vesk {

using namespace Qt::StringLiterals;

namespace {

QString refusedBySystem(const QString &name, int errorNumber)
{
    if (errorNumber == ENOENT) {
        return u"There is no file %1"_s.arg(name);
    }
    return u"%1 cannot be opened: %2"_s.arg(name, Text::systemReason(errorNumber));
}

/// Why what was opened holds no sound; empty when it may.
QString refusedByKind(const QString &name, const struct stat &status)
{
    if (S_ISDIR(status.st_mode)) {
        return u"%1 is a folder, not a sound file"_s.arg(name);
    }
    if (!S_ISREG(status.st_mode)) {
        return u"%1 is a pipe or a device, not a sound file"_s.arg(name);
    }
    return status.st_size == 0 ? u"%1 is empty"_s.arg(name) : QString();
}

} // namespace

FfmpegInput::FfmpegInput(const QString &path)
    : m_name(Text::fileName(path))
    // Non-blocking, so that a named pipe in a file's place is refused instead of waited for.
    , m_descriptor(::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY))
    , m_errorNumber(m_descriptor.number() < 0 ? errno : 0)
{
    constexpr int BufferSize = 64 * 1024;
    m_io = ffmpegOwned(avio_alloc_context(static_cast<unsigned char *>(av_malloc(BufferSize)), BufferSize, 0,
                                          this, &FfmpegInput::read, nullptr, &FfmpegInput::seek));

    struct stat status = {};
    if (m_errorNumber == 0 && ::fstat(m_descriptor.number(), &status) != 0) {
        m_errorNumber = errno;
    }
    if (m_errorNumber != 0) {
        throw AudioFileError(refusedBySystem(m_name, m_errorNumber));
    }
    if (const QString refusal = refusedByKind(m_name, status); !refusal.isEmpty()) {
        throw AudioFileError(refusal);
    }
}

void FfmpegInput::check() const
{
    if (m_errorNumber != 0) {
        throw AudioFileError(u"%1 cannot be read: %2"_s.arg(m_name, Text::systemReason(m_errorNumber)));
    }
}

int FfmpegInput::read(void *self, uint8_t *buffer, int size)
{
    auto *input = static_cast<FfmpegInput *>(self);
    ssize_t got = 0;
    do {
        got = ::read(input->m_descriptor.number(), buffer, static_cast<size_t>(size));
    } while (got < 0 && errno == EINTR);
    if (got < 0) {
        input->m_errorNumber = errno;
        return AVERROR(input->m_errorNumber);
    }
    return got == 0 ? AVERROR_EOF : static_cast<int>(got);
}

int64_t FfmpegInput::seek(void *self, int64_t offset, int whence)
{
    const auto *input = static_cast<FfmpegInput *>(self);
    if ((whence & AVSEEK_SIZE) != 0) {
        struct stat status = {};
        return ::fstat(input->m_descriptor.number(), &status) == 0 ? status.st_size : AVERROR(errno);
    }
    const off_t position = ::lseek(input->m_descriptor.number(), offset, whence & ~AVSEEK_FORCE);
    return position >= 0 ? position : AVERROR(errno);
}

} // namespace vesk
