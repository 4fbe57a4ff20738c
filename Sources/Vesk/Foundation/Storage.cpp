#include "Foundation/Storage.h"

#include "Foundation/Files.h"

#include <QFileInfo>

namespace vesk::Storage {

void write(QByteArrayView content, const QString &path)
{
    try {
        Files::makeFolder(QFileInfo(path).path());
    } catch (
        const FileError &) { // the write below fails then, or works because the folder is there after all
    }
    try {
        Files::replace(path, content);
    } catch (const FileError &) { // best effort by contract; the old content is whole
    }
}

void append(QByteArrayView content, const QString &path)
{
    try {
        if (!Files::append(path, content)) {
            write(content, path);
        }
    } catch (const FileError &) { // a full disk: what the file held is still there, and that matters more
    }
}

} // namespace vesk::Storage
