#pragma once

#include "Foundation/UserError.h"

#include <QByteArray>

namespace vesk {

/// A file operation that the system refused. The sentence names the file and the system's reason.
class FileError final : public UserError {
public:
    enum class Operation { read, write, makeFolder };

    FileError(Operation operation, QString path, int errorNumber);

    Operation operation() const { return m_operation; }
    int errorNumber() const { return m_errorNumber; }
    QString errorDescription() const override;

private:
    Operation m_operation;
    QString m_path;
    int m_errorNumber;
};

/// Whole-file operations on the person's private files. Blocking, callable from any thread; callers serialise
/// access to one file. Every function throws FileError.
namespace Files {

/// The whole content of a regular file.
QByteArray read(const QString &path);

/// Creates the folder and those above it; no error if it exists.
void makeFolder(const QString &path);

/// Where a symbolic link finally points, also when nothing is there yet; the path itself when it is no link.
QString linkTarget(const QString &path);

/// Replaces the file's content in one step: readers see the old content or the new one, also when the disk is
/// full or the power fails in between. The new file has mode 0600 from its first moment, whatever the old one
/// had. A symbolic link is written through: it stays, and what it points to is replaced.
void replace(const QString &path, QByteArrayView content);

/// Adds to the end of an existing file and returns true; false when there is none that can be opened for
/// writing. Throws when it could be opened but not filled; the file is then as long as it was.
bool append(const QString &path, QByteArrayView content);

/// Deletes it; no error if there is none. What a symbolic link points to goes as well.
void remove(const QString &path);

} // namespace Files

} // namespace vesk
