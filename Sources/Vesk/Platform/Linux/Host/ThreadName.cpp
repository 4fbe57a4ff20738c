#include "Foundation/ThreadName.h"

#include <pthread.h>

namespace vesk {

void setCurrentThreadName(const std::string &name)
{
    constexpr std::size_t LongestName = 15; // the kernel's TASK_COMM_LEN without the closing zero
    pthread_setname_np(pthread_self(), name.substr(0, LongestName).c_str());
}

} // namespace vesk
