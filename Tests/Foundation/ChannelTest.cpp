#include "Foundation/Channel.h"

#include "Support/Await.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace vesk {

namespace {

Task<std::vector<int>> all(Channel<int> &channel)
{
    std::vector<int> values;
    while (const auto value = co_await channel.next()) {
        values.push_back(*value);
    }
    co_return values;
}

} // namespace

TEST(Channel, valuesOfAnotherThreadArriveInOrderAlsoWhenTheReceiverIsFaster)
{
    constexpr int Values = 2000;
    Channel<int> channel;
    std::thread sender([&channel] {
        for (int i = 0; i < Values; ++i) {
            channel.push(i);
            if (i % 100 == 0) {
                std::this_thread::yield();
            }
        }
        channel.finish();
    });
    const std::vector<int> received = awaited(all(channel));
    sender.join();
    ASSERT_EQ(received.size(), Values);
    EXPECT_TRUE(std::ranges::is_sorted(received));
}

} // namespace vesk
