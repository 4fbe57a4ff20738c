#pragma once

#include <QByteArray>
#include <QString>

#include <chrono>

namespace vesk {

/// Starts the program that goes on offering `packed` (see KeptSelections) and waits until it says that it
/// does, at most for `limit`. It belongs to no terminal and outlives this process. False when it does not
/// offer anything by then.
bool startClipboardKeeper(const QString &program, const QByteArray &packed, std::chrono::milliseconds limit);

} // namespace vesk
