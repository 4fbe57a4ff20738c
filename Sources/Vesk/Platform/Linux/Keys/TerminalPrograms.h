#pragma once

#include <QByteArray>

namespace vesk {

/// Whether a window belongs to a terminal, by either part of its WM_CLASS. Terminals take Control and V as
/// input for the program inside; all of these paste on Shift and Insert, most of them the primary selection,
/// Konsole the clipboard.
bool isTerminal(const QByteArray &instanceName, const QByteArray &className);

} // namespace vesk
