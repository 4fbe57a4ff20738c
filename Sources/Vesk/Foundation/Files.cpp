#include "Foundation/Files.h"

#include "Foundation/Descriptor.h"
#include "Foundation/Text.h"

#include <QFile>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace vesk {

FileError::FileError(Operation operation, QString path, int errorNumber)
    : m_operation(operation)
    , m_path(std::move(path))
    , m_errorNumber(errorNumber)
{
}

QString FileError::errorDescription() const
{
    const auto verb = [this]() -> QStringView {
        switch (m_operation) {
        case Operation::read: return u"cannot be read: ";
        case Operation::write: return u"cannot be written: ";
        case Operation::makeFolder: return u"cannot be created: ";
        }
        Q_UNREACHABLE();
    };
    return m_path + u' ' + verb() + Text::systemReason(m_errorNumber);
}

namespace Files {

namespace {

using Operation = FileError::Operation;

} // namespace

QByteArray read(const QString &path)
{
    // Non-blocking, so that a named pipe in a file's place is refused instead of waited for.
    const Descriptor file(::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status = {};
    if (file.number() < 0 || ::fstat(file.number(), &status) != 0) {
        throw FileError(Operation::read, path, errno);
    }
    if (!S_ISREG(status.st_mode)) {
        throw FileError(Operation::read, path, S_ISDIR(status.st_mode) ? EISDIR : EINVAL);
    }
    QByteArray content(static_cast<qsizetype>(status.st_size), Qt::Uninitialized);
    qsizetype filled = 0;
    while (true) { // the file may grow or shrink while it is read
        if (filled == content.size()) {
            content.resize(content.size() + 4096);
        }
        const ssize_t got =
            ::read(file.number(), content.data() + filled, static_cast<size_t>(content.size() - filled));
        if (got < 0 && errno != EINTR) {
            throw FileError(Operation::read, path, errno);
        }
        if (got == 0) {
            content.resize(filled);
            return content;
        }
        filled += std::max<qsizetype>(got, 0);
    }
}

void makeFolder(const QString &path)
{
    std::error_code error;
    std::filesystem::create_directories(QFile::encodeName(path).toStdString(), error);
    if (error) {
        throw FileError(Operation::makeFolder, path, error.value());
    }
}

QString linkTarget(const QString &path)
{
    constexpr int MostLinks = 40; // what the kernel follows
    std::filesystem::path target = QFile::encodeName(path).toStdString();
    std::error_code ignored; // an unreadable link fails again, with its reason, when the file is opened
    for (int i = 0; i < MostLinks && std::filesystem::is_symlink(target, ignored); ++i) {
        target = target.parent_path() / std::filesystem::read_symlink(target, ignored);
    }
    return QFile::decodeName(QByteArray::fromStdString(target.string()));
}

void replace(const QString &path, QByteArrayView content)
{
    const std::string target = QFile::encodeName(linkTarget(path)).toStdString();
    std::string temporary = target + ".XXXXXX";
    // mkostemp creates with mode 0600, so the content is never readable by others, not even under its
    // temporary name.
    Descriptor file(::mkostemp(temporary.data(), O_CLOEXEC));
    if (file.number() < 0) {
        throw FileError(Operation::write, path, errno);
    }
    int error = writeAll(file.number(), content);
    if (error == 0 && ::fsync(file.number()) != 0) {
        error = errno;
    }
    if (error == 0) {
        error = file.close();
    }
    if (error == 0 && ::rename(temporary.c_str(), target.c_str()) != 0) {
        error = errno;
    }
    if (error != 0) {
        ::unlink(temporary.c_str());
        throw FileError(Operation::write, path, error);
    }
}

void remove(const QString &path)
{
    for (const QString &name : {linkTarget(path), path}) {
        if (::unlink(QFile::encodeName(name).constData()) != 0 && errno != ENOENT) {
            throw FileError(Operation::write, path, errno);
        }
    }
}

bool append(const QString &path, QByteArrayView content)
{
    Descriptor file(::open(QFile::encodeName(path).constData(), O_WRONLY | O_APPEND | O_CLOEXEC));
    if (file.number() < 0) {
        return false;
    }
    struct stat before = {};
    int error = ::fstat(file.number(), &before) == 0 ? writeAll(file.number(), content) : errno;
    if (error != 0 && S_ISREG(before.st_mode) && ::ftruncate(file.number(), before.st_size) != 0) {
        error = errno; // a part of the content stays behind what was whole
    }
    if (error == 0) {
        error = file.close();
    }
    if (error != 0) {
        throw FileError(Operation::write, path, error);
    }
    return true;
}

} // namespace Files

} // namespace vesk
