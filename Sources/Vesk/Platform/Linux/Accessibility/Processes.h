#pragma once

#include <QString>

/// Facts about running processes from /proc. Any thread; a process that is gone has none.
namespace vesk::Processes {

/// The file name of the program that the process runs; empty when it may not be known.
QString executableName(qint64 process);

/// One of the two descends from the other.
bool areRelated(qint64 one, qint64 other);

} // namespace vesk::Processes
