#pragma once

#include <QCoroTask>
#include <QString>

namespace vesk {

/// Asynchronous work that ends with a T or an exception. It starts at once and runs on the thread that called
/// it, to which it returns after every co_await. Dropping it does not cancel it.
template <typename T = void>
using Task = QCoro::Task<T>;

/// Lets a task run for its own sake. An exception that escapes it is logged as "<name> failed" with its
/// description: the only way in which nobody waits for a task.
void launch(QString name, Task<> task);

} // namespace vesk
