#include "Foundation/BoundedQueue.h"

#include <atomic>
#include <gtest/gtest.h>
#include <memory>
#include <thread>

namespace vesk {

TEST(BoundedQueue, everyValueArrivesOnceInOrderAndNeverMoreThanTheCapacityWait)
{
    constexpr int Values = 5000;
    constexpr int Capacity = 3;
    BoundedQueue<int> queue(Capacity);
    std::atomic<int> pushed = 0;
    std::atomic<int> taken = 0;
    std::atomic<int> most = 0;
    std::thread producer([&] {
        for (int i = 0; i < Values; ++i) {
            EXPECT_TRUE(queue.push(i));
            // One more than lies in the queue may be under way on either side.
            most = std::max(most.load(), ++pushed - taken.load());
        }
        queue.close();
    });
    int expected = 0;
    while (const auto value = queue.pop()) {
        EXPECT_EQ(*value, expected++);
        ++taken;
    }
    producer.join();
    EXPECT_EQ(expected, Values);
    EXPECT_LE(most, Capacity + 1);
}

TEST(BoundedQueue, abandoningWakesAProducerThatWaitsForRoom)
{
    BoundedQueue<std::unique_ptr<int>> queue(1);
    ASSERT_TRUE(queue.push(std::make_unique<int>(1)));
    std::atomic<bool> accepted = true;
    std::thread producer([&] { accepted = queue.push(std::make_unique<int>(2)); });
    queue.abandon();
    producer.join();
    EXPECT_FALSE(accepted);
    EXPECT_FALSE(queue.pop());
}

TEST(BoundedQueue, whatWasPushedBeforeClosingCanStillBeTaken)
{
    BoundedQueue<int> queue(2);
    queue.push(7);
    queue.close();
    EXPECT_FALSE(queue.push(8));
    EXPECT_EQ(queue.pop(), 7);
    EXPECT_FALSE(queue.pop());
}

} // namespace vesk
