#pragma once

#include <QByteArrayView>
#include <QString>

/// Best-effort writing of the person's data files: private (mode 0600), atomic, and silent about failures,
/// because a dictation or a note in progress must go on when the disk does not. Callers that must know use
/// Files. Blocking; no lock of its own: callers serialise access to one file.
namespace vesk::Storage {

/// Replaces the file's content, creating the folder that holds it.
void write(QByteArrayView content, const QString &path);

/// Adds to the file's end. A file that is missing, or that cannot be opened for writing, is replaced as by
/// write().
void append(QByteArrayView content, const QString &path);

} // namespace vesk::Storage
