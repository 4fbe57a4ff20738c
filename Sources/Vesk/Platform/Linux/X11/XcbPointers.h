#pragma once

#include <cstdlib>
#include <memory>

namespace vesk {

struct XcbFree {
    void operator()(void *memory) const { std::free(memory); }
};

/// A reply, an event or an error: xcb leaves them to the caller, who frees them.
template <typename T>
using XcbPointer = std::unique_ptr<T, XcbFree>;

} // namespace vesk
