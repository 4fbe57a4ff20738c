#pragma once

#include <QString>

/// The program's log: one line an event, appended by a thread of its own, so that no caller waits for the
/// disk. Failures are silent, there being nobody left to tell. Never hand it dictated text, only lengths and
/// names.
namespace vesk::Log {

/// "Library/Logs/Vesk.log" under the home folder, found once per process. The folder is not created here.
const QString &file();

/// Stamps the line with the current time (UTC, whole seconds) and returns at once; lines reach the file in
/// the order of the calls. Callable from any thread. What was handed over is on disk before the process ends
/// by exit() or by returning from main(). The message is written unchanged: line feeds in it are the
/// caller's.
void write(const QString &message);

/// Waits until every line handed over so far is in the file.
void flush();

} // namespace vesk::Log
