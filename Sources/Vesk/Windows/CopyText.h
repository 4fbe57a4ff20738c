#pragma once

#include <QString>

namespace vesk {

class Pasteboard;

/// Puts a text on the general board, to stay. A board that cannot be reached goes to the log.
void copyText(Pasteboard &pasteboard, const QString &text);

} // namespace vesk
