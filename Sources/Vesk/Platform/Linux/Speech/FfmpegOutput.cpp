#include "Platform/Linux/Speech/FfmpegOutput.h"

#include "Foundation/Text.h"
#include "Platform/AudioFiles.h"

#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace vesk {

using namespace Qt::StringLiterals;

FfmpegOutput::FfmpegOutput(const QString &path)
    : m_path(path)
    , m_descriptor(::open(QFile::encodeName(path).constData(),
                          O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR))
    , m_errorNumber(m_descriptor.number() < 0 ? errno : 0)
{
    if (m_errorNumber != 0) {
        refuse();
    }
    constexpr int BufferSize = 64 * 1024; // more than any flush holds, so that each is one write
    m_io = ffmpegOwned(avio_alloc_context(static_cast<unsigned char *>(av_malloc(BufferSize)), BufferSize, 1,
                                          this, nullptr, &FfmpegOutput::write, &FfmpegOutput::seek));
}

void FfmpegOutput::close()
{
    avio_flush(m_io.get());
    const int error = m_descriptor.close();
    if (m_errorNumber == 0) {
        m_errorNumber = error;
    }
    if (m_errorNumber != 0) {
        refuse();
    }
}

void FfmpegOutput::refuse() const
{
    throw AudioFileError(
        u"%1 cannot be written: %2"_s.arg(Text::fileName(m_path), Text::systemReason(m_errorNumber)));
}

int FfmpegOutput::write(void *self, uint8_t *bytes, int size)
{
    auto *output = static_cast<FfmpegOutput *>(self);
    if (output->m_errorNumber == 0) {
        const int descriptor = output->m_descriptor.number();
        const off_t before = ::lseek(descriptor, 0, SEEK_CUR);
        const auto length = static_cast<qsizetype>(size);
        output->m_errorNumber = writeAll(descriptor, {reinterpret_cast<const char *>(bytes), length});
        if (output->m_errorNumber != 0 && ::ftruncate(descriptor, before) != 0) {
            output->m_errorNumber = errno; // half a fragment stays, which readers pass over
        }
    }
    return output->m_errorNumber == 0 ? size : AVERROR(output->m_errorNumber);
}

int64_t FfmpegOutput::seek(void *self, int64_t offset, int whence)
{
    const auto *output = static_cast<FfmpegOutput *>(self);
    if ((whence & AVSEEK_SIZE) != 0) {
        return AVERROR(ENOSYS);
    }
    const off_t position = ::lseek(output->m_descriptor.number(), offset, whence & ~AVSEEK_FORCE);
    return position >= 0 ? position : AVERROR(errno);
}

} // namespace vesk
