#include "Foundation/Task.h"

#include "Foundation/Log.h"
#include "Foundation/UserError.h"

namespace vesk {

namespace {

Task<> runLogged(QString name, Task<> task)
{
    try {
        co_await task;
    } catch (...) {
        Log::write(name + u" failed: " + describe(std::current_exception()));
    }
}

} // namespace

void launch(QString name, Task<> task) { runLogged(std::move(name), std::move(task)); }

} // namespace vesk
