#pragma once

#include <QString>

#include <optional>

/// Recordings that may outlive the process, so that words which could not be uploaded are not lost with it. A
/// recording is kept once it is marked, by an empty file beside it; whatever else lies in the temporary
/// folder is deleted at the next launch. Only files of this person count. Blocking, any thread; failures are
/// silent, the file being temporary anyway.
namespace vesk::KeptRecordings {

/// To be called when nothing speaks against keeping the recording: it is a dictation, and not for a password
/// field.
void mark(const QString &recording);

/// Deletes a recording and its mark.
void discard(const QString &recording);

/// At the end of the program: deletes what nobody asked to keep.
void discardUnmarked();

/// At launch: the newest marked recording, after deleting every other one that an earlier process left.
std::optional<QString> recover();

} // namespace vesk::KeptRecordings
