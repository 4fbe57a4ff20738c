#pragma once

#include <cstddef>
#include <functional>

namespace vesk {

/// How many threads a job on all cores should have: the processors that this process may use, up to eight.
/// Beyond that, reading files waits for memory and not for cores, and every worker has buffers of its own.
unsigned workersForAllCores();

/// Calls `work(index, worker)` once for each index below `count`, on `workers` threads of which the caller's
/// is one. `worker` is below `workers`, and no two calls run at a time for the same one, so that it may pick
/// a buffer. Blocking; returns when all are done. What a call throws is rethrown here, the first of several,
/// and the indexes not begun by then are left out. Without Qt, for the thread sanitizer.
void parallelFor(std::size_t count, unsigned workers,
                 const std::function<void(std::size_t index, unsigned worker)> &work);

} // namespace vesk
