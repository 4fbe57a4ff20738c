#pragma once

#include <functional>

namespace vesk::test {

/// Runs the body in a child process and returns its exit status. Whatever the child leaves behind, also when
/// it crashes or is killed, is ended by its id before this returns: programs that a bus started on demand
/// belong to nobody and would outlive a test that died.
int supervised(const std::function<int()> &body);

} // namespace vesk::test
