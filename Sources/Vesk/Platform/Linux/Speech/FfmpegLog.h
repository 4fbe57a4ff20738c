#pragma once

#include <QString>

namespace vesk::FfmpegLog {

/// Keeps FFmpeg's messages away from standard error, for the whole process and from the first call on.
/// Callable from any thread.
void silence();

/// Whether FFmpeg reported an error or a warning on this thread since it was last asked.
bool takeComplaint();

/// Forgets what FFmpeg said on this thread.
void clear();

/// The last error that FFmpeg reported on this thread since clear(); empty when there was none. For the log
/// and for telling failures apart, not for the person.
QString lastError();

} // namespace vesk::FfmpegLog
