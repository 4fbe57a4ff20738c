#include "Foundation/ParallelFor.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

namespace vesk {

unsigned workersForAllCores()
{
    constexpr unsigned Most = 8;
    return std::clamp(std::thread::hardware_concurrency(), 1U, Most);
}

void parallelFor(std::size_t count, unsigned workers,
                 const std::function<void(std::size_t index, unsigned worker)> &work)
{
    std::atomic<std::size_t> next = 0;
    std::mutex mutex;
    std::exception_ptr failure;
    const auto run = [&](unsigned worker) {
        try {
            for (std::size_t index = next++; index < count; index = next++) {
                work(index, worker);
            }
        } catch (...) {
            const std::lock_guard lock(mutex);
            failure = failure ? failure : std::current_exception();
            next = count;
        }
    };
    {
        std::vector<std::jthread> threads;
        for (unsigned worker = 1; worker < workers && worker < count; ++worker) {
            try {
                threads.emplace_back(run, worker);
            } catch (const std::system_error &) { // the system gives no more: those that run do it all
                break;
            }
        }
        run(0);
    }
    if (failure) {
        std::rethrow_exception(failure);
    }
}

} // namespace vesk
