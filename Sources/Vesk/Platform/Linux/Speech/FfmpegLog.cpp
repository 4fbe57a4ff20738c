#include "Platform/Linux/Speech/FfmpegLog.h"

extern "C" {
#include <libavutil/log.h>
}

#include <array>
#include <cstdarg>
#include <utility>

namespace vesk::FfmpegLog {

namespace {

// FFmpeg reports on the thread that called it; our decoders have no threads of their own.
struct Complaints {
    bool hasComplained = false;
    QString lastError;
};

Complaints &ofThisThread()
{
    thread_local Complaints complaints;
    return complaints;
}

void keep(void *context, int level, const char *format, va_list arguments)
{
    if (level > AV_LOG_WARNING) {
        return;
    }
    ofThisThread().hasComplained = true;
    if (level > AV_LOG_ERROR) {
        return;
    }
    std::array<char, 512> line = {};
    int isLineStart = 1;
    if (av_log_format_line2(context, level, format, arguments, line.data(), line.size(), &isLineStart) > 0) {
        ofThisThread().lastError = QString::fromUtf8(line.data()).trimmed();
    }
}

} // namespace

void silence()
{
    [[maybe_unused]] static const bool isDone = [] {
        av_log_set_callback(keep);
        return true;
    }();
}

void clear() { ofThisThread() = {}; }

QString lastError() { return ofThisThread().lastError; }

bool takeComplaint() { return std::exchange(ofThisThread().hasComplained, false); }

} // namespace vesk::FfmpegLog
