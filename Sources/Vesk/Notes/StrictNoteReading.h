#pragma once

#include "Foundation/JsonScanner.h"
#include "Notes/NoteVisitor.h"

namespace vesk {

/// Reads a note of any length in the memory of the scanner's window, and decides what is a note and what is
/// not. False for everything that is none.
bool readNoteStrictly(JsonScanner &scanner, NoteVisitor &visitor);

} // namespace vesk
