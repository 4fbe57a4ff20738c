#pragma once

#include <string>

namespace vesk {

/// Gives the calling thread the name under which debuggers and process lists show it. Each system defines it
/// in its own folder below Platform; a name that is too long is cut there.
void setCurrentThreadName(const std::string &name);

} // namespace vesk
