#pragma once

#include "MCP/NewestNotes.h"
#include "MCP/NoteHeading.h"
#include "MCP/TextSearch.h"

namespace vesk {

/// A note in which the phrase was found.
struct FoundNote {
    struct Snippet {
        QString in; ///< the field's name for people
        QString text;
    };

    NoteHeading heading;
    qsizetype matches = 0;
    std::vector<Snippet> snippets; ///< the first few, in the order of fields and then of the text
};

struct FoundNotes {
    qsizetype total = 0;           ///< all notes with a match
    std::vector<FoundNote> newest; ///< newest first, as many as were asked for
};

/// Searches every note of a folder on all cores. Counts and snippets are worked out only for those notes that
/// will be shown; of the others it is found out whether there is a match. Blocking.
FoundNotes searchNotes(const QString &folder, const SearchPhrase &phrase, std::size_t most);

} // namespace vesk
