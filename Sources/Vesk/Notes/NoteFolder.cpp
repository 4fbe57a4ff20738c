#include "Notes/NoteFolder.h"

#include "Foundation/JsonScanner.h"
#include "Foundation/ParallelFor.h"
#include "Notes/StrictNoteReading.h"

#include <QFile>

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace vesk {

namespace {

/// A note of an hour has about 150 kB; what is longer than this goes through a window instead of into memory.
constexpr qsizetype LargestInMemory = 1024L * 1024;
constexpr qsizetype WindowSize = 256L * 1024;

/// As many bytes as there are, up to the capacity; what cannot be read ends the file, which makes it no note.
qsizetype readSome(int file, char *into, qsizetype capacity)
{
    while (true) {
        const ssize_t got = ::read(file, into, static_cast<std::size_t>(capacity));
        if (got >= 0 || errno != EINTR) {
            return std::max<qsizetype>(got, 0);
        }
    }
}

bool isNoteName(std::string_view name)
{
    constexpr std::string_view Extension = ".json";
    return name.size() > Extension.size() && name.ends_with(Extension);
}

} // namespace

bool NoteReader::read(int folder, const char *name, NoteVisitor &visitor, const Filter &filter)
{
    // Non-blocking, so that a named pipe among the notes is passed over instead of waited for.
    const Descriptor file(::openat(folder, name, O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status = {};
    if (file.number() < 0 || ::fstat(file.number(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return false;
    }
    return status.st_size <= LargestInMemory ? readInMemory(file.number(), status.st_size, visitor, filter)
                                             : readThroughWindow(file.number(), visitor);
}

bool NoteReader::readInMemory(int file, qsizetype size, NoteVisitor &visitor, const Filter &filter)
{
    const qsizetype needed = size + FastNoteReading::padding();
    if (m_content.size() < needed) {
        m_content = QByteArray(needed, '\0');
    }
    qsizetype filled = 0;
    // The file may have shrunk since its size was asked for; what it has grown by makes it another note.
    for (qsizetype got = 1; filled < size && got > 0; filled += got) {
        got = readSome(file, m_content.data() + filled, size - filled);
    }
    const QByteArrayView json(m_content.constData(), filled);
    if (filter && !filter(json)) {
        return false;
    }
    if (m_fast.read(json, visitor)) {
        return true;
    }
    JsonScanner scanner(json);
    return readNoteStrictly(scanner, visitor);
}

bool NoteReader::readThroughWindow(int file, NoteVisitor &visitor)
{
    JsonScanner scanner([file](char *into, qsizetype capacity) { return readSome(file, into, capacity); },
                        WindowSize);
    return readNoteStrictly(scanner, visitor);
}

NoteFolder::NoteFolder(const QString &path)
    : m_folder(::open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))
{
    const auto close = [](DIR *stream) { ::closedir(stream); };
    // A descriptor of its own for the listing, which closes it.
    const int copy = ::fcntl(m_folder.number(), F_DUPFD_CLOEXEC, 0);
    const std::unique_ptr<DIR, decltype(close)> stream(copy < 0 ? nullptr : ::fdopendir(copy), close);
    if (!stream) {
        return;
    }
    // NOLINTNEXTLINE(concurrency-mt-unsafe): each stream has a reader of its own
    while (const dirent *entry = ::readdir(stream.get())) {
        if (isNoteName(static_cast<const char *>(entry->d_name))) {
            m_names.emplace_back(static_cast<const char *>(entry->d_name));
        }
    }
}

bool NoteFolder::read(NoteReader &reader, std::size_t index, NoteVisitor &visitor,
                      const NoteReader::Filter &filter) const
{
    return reader.read(m_folder.number(), m_names[index].constData(), visitor, filter);
}

void NoteFolder::forEach(
    unsigned workers,
    const std::function<void(NoteReader &reader, std::size_t index, unsigned worker)> &work) const
{
    std::vector<NoteReader> readers(workers);
    parallelFor(size(), workers,
                [&](std::size_t index, unsigned worker) { work(readers[worker], index, worker); });
}

} // namespace vesk
