#pragma once

#include "Notes/NoteVisitor.h"

#include <memory>

namespace vesk {

/// Reads a note that is in memory, several times as fast as readNoteStrictly(), by giving up where it would
/// have to look closely. Keeps its buffers from file to file; one thread at a time.
class FastNoteReading {
public:
    FastNoteReading();
    ~FastNoteReading();

    /// How many bytes must be readable behind a document.
    static qsizetype padding();

    /// True when it is a note, told whole to the visitor. False when it may be none: what the visitor was
    /// told is void then, and the strict reading decides.
    bool read(QByteArrayView padded, NoteVisitor &visitor);

private:
    struct Parser;
    std::unique_ptr<Parser> m_parser;
};

} // namespace vesk
