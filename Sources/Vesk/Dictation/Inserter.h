#pragma once

#include "Foundation/Task.h"

#include <QString>

#include <chrono>
#include <optional>

namespace vesk {

class KeyPoster;
class PasteboardLoan;

/// Puts finished text into the field that has the focus in another program, the way a person would: by the
/// clipboard and the paste key. Holds nothing between calls; what has to be given back afterwards is in the
/// PasteboardLoan. Main thread.
namespace Inserter {

/// How long a paste waits for the person to let go of their modifier keys.
inline constexpr std::chrono::milliseconds ModifierLimit{2000};

/// The text with at most one space added in front and at most one at the end, where its words would
/// otherwise run into those of the field. `before` and `after` are what stands around the cursor.
QString spaced(const QString &text, const std::optional<QString> &before,
               const std::optional<QString> &after);

/// The replacement between the white space that stood at the edges of the old text. White space alone counts
/// as both edges.
QString keepingEdges(const QString &oldText, const QString &replacement);

/// Waits until no modifier is held, lays the text on the pasteboard, presses the paste key and gives the
/// pasteboard back 0.8 s later. Ends after the key press; pastes begun meanwhile take their turn. Throws
/// InsertionError or PasteboardError when nothing was pasted. Both services must outlive the task.
Task<> paste(PasteboardLoan &loan, KeyPoster &keys, QString text);

/// Command and V, down and up. A key that cannot be made is left out silently.
Task<> pressCommandV(KeyPoster &keys);

} // namespace Inserter

} // namespace vesk
