#include "Foundation/SerialQueue.h"

#include <atomic>
#include <gtest/gtest.h>
#include <stdexcept>
#include <vector>

namespace vesk {

TEST(SerialQueue, blocksOfSeveralThreadsRunOneAtATimeAndInEachThreadsOrder)
{
    constexpr int Threads = 4;
    constexpr int Blocks = 500;
    std::vector<std::pair<int, int>> ran; // unguarded on purpose: only the queue may touch it
    {
        SerialQueue queue("vesk.test");
        std::vector<std::thread> callers;
        for (int thread = 0; thread < Threads; ++thread) {
            callers.emplace_back([&queue, &ran, thread] {
                for (int block = 0; block < Blocks; ++block) {
                    queue.async([&ran, thread, block] { ran.emplace_back(thread, block); });
                }
            });
        }
        for (std::thread &caller : callers) {
            caller.join();
        }
    } // the destructor runs what is queued

    ASSERT_EQ(ran.size(), Threads * Blocks);
    std::vector<int> next(Threads, 0);
    for (const auto &[thread, block] : ran) {
        EXPECT_EQ(block, next[thread]++);
    }
}

TEST(SerialQueue, syncWaitsForAllBeforeItAndBringsBackWhatTheBlockThrows)
{
    SerialQueue queue("vesk.test");
    int counter = 0;
    for (int i = 0; i < 100; ++i) {
        queue.async([&counter] { ++counter; });
    }
    int seen = 0;
    queue.sync([&] { seen = counter; });
    EXPECT_EQ(seen, 100);
    EXPECT_THROW(queue.sync([] { throw std::runtime_error("refused"); }), std::runtime_error);
    queue.sync([&] { ++seen; });
    EXPECT_EQ(seen, 101);
}

TEST(SerialQueue, aBlockMayQueueAnotherWhileTheQueueEnds)
{
    std::atomic<int> ran = 0;
    {
        SerialQueue queue("vesk.test");
        queue.async([&] {
            queue.async([&ran] { ++ran; });
            ++ran;
        });
    }
    EXPECT_EQ(ran, 2);
}

} // namespace vesk
