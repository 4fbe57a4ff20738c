#pragma once

#include "Platform/Accessibility.h"

#include <QString>

/// Pieces cut out of a text without parts of characters at their ends. A character is what a person takes for
/// one: a letter with its accents, a family emoji, a flag.
namespace vesk::TextPiece {

enum class Cut {
    none,
    start, ///< the text goes on before the piece
    end,   ///< the text goes on behind the piece
};

/// The piece without a first or last character that might be torn, which only its neighbour beyond the cut
/// could tell: emoji, flags and what consists of several code points.
QString whole(const QString &piece, Cut cut);

/// The length of the text in a unit.
qint64 length(const QString &text, TextUnit unit);

/// The range of the text, clamped to it, without half surrogate pairs.
QString inRange(const QString &text, TextRange range, TextUnit unit);

} // namespace vesk::TextPiece
