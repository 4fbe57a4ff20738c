#include "Dictation/KeptRecordings.h"

#include "Dictation/CloudRecording.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace vesk::KeptRecordings {

using namespace Qt::StringLiterals;

namespace {

const auto MarkSuffix = u".kept"_s;

QString markOf(const QString &recording) { return recording + MarkSuffix; }

/// This person's, the newest first.
QFileInfoList ownFiles(const QDir &folder, const QString &pattern)
{
    QFileInfoList files = folder.entryInfoList({pattern}, QDir::Files | QDir::NoSymLinks, QDir::Time);
    const uint user = QFileInfo(QDir::homePath()).ownerId();
    files.removeIf([user](const QFileInfo &file) { return file.ownerId() != user; });
    return files;
}

QFileInfoList recordingsIn(const QDir &folder) { return ownFiles(folder, u"vesk-*.m4a"_s); }

/// Of recordings that could not begin.
void discardMarksAlone(const QDir &folder)
{
    for (const QFileInfo &mark : ownFiles(folder, QString(u"vesk-*.m4a" + MarkSuffix))) {
        if (!QFileInfo::exists(mark.absoluteFilePath().chopped(MarkSuffix.size()))) {
            QFile::remove(mark.absoluteFilePath());
        }
    }
}

} // namespace

void mark(const QString &recording)
{
    QFile file(markOf(recording));
    // NewOnly: a link that somebody else laid there is not followed.
    file.open(QIODevice::WriteOnly | QIODevice::NewOnly, QFile::ReadOwner | QFile::WriteOwner);
}

void discard(const QString &recording)
{
    CloudRecording::discard(recording);
    QFile::remove(markOf(recording));
}

std::optional<QString> recover()
{
    const QDir folder = QDir::temp();
    std::optional<QString> newest;
    for (const QFileInfo &recording : recordingsIn(folder)) {
        const QString path = recording.absoluteFilePath();
        if (!newest && recording.size() > 0 && QFileInfo::exists(markOf(path))) {
            newest = path;
        } else {
            discard(path);
        }
    }
    discardMarksAlone(folder);
    return newest;
}

void discardUnmarked()
{
    const QDir folder = QDir::temp();
    for (const QFileInfo &recording : recordingsIn(folder)) {
        if (!QFileInfo::exists(markOf(recording.absoluteFilePath()))) {
            discard(recording.absoluteFilePath());
        }
    }
}

} // namespace vesk::KeptRecordings
