#pragma once

#include "Foundation/Descriptor.h"
#include "Notes/FastNoteReading.h"
#include "Notes/NoteVisitor.h"

#include <functional>
#include <vector>

namespace vesk {

/// Reads notes' files, one after the other, with buffers that it keeps. One thread at a time.
class NoteReader {
public:
    /// Answers from the bytes of a file whether reading it can be of any use.
    using Filter = std::function<bool(QByteArrayView json)>;

    /// False when the file cannot be read, is not a note, or is of no use to the filter. Takes no more than
    /// about 6 MiB however long the file is.
    bool read(int folder, const char *name, NoteVisitor &visitor, const Filter &filter = {});

private:
    bool readInMemory(int file, qsizetype size, NoteVisitor &visitor, const Filter &filter);
    static bool readThroughWindow(int file, NoteVisitor &visitor);

    FastNoteReading m_fast;
    QByteArray m_content;
};

/// The files of the notes folder as they are listed when this is made. Nothing in it is ever written,
/// and what is not a note is passed over: foreign, half-written and unreadable files, links in a circle.
class NoteFolder {
public:
    /// A folder that cannot be listed has no files.
    explicit NoteFolder(const QString &path);

    std::size_t size() const { return m_names.size(); }

    /// Reads one file. May be called for several at a time, with a reader each.
    bool read(NoteReader &reader, std::size_t index, NoteVisitor &visitor,
              const NoteReader::Filter &filter = {}) const;

    /// Calls `work` for every file, on that many threads; see parallelFor().
    void
    forEach(unsigned workers,
            const std::function<void(NoteReader &reader, std::size_t index, unsigned worker)> &work) const;

private:
    Descriptor m_folder;
    std::vector<QByteArray> m_names; // in the folder's own order
};

} // namespace vesk
