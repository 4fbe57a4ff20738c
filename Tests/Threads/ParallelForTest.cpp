#include "Foundation/ParallelFor.h"

#include <array>
#include <gtest/gtest.h>
#include <stdexcept>
#include <vector>

namespace vesk {

TEST(ParallelForTest, everyIndexIsDoneOnceAndAWorkersBufferIsItsOwn)
{
    constexpr std::size_t Count = 5000;
    constexpr unsigned Workers = 4;
    std::vector<int> done(Count);
    std::array<std::size_t, Workers> buffers = {}; // plain: a second thread at one of them is a race
    parallelFor(Count, Workers, [&](std::size_t index, unsigned worker) {
        ++done[index];
        ++buffers[worker];
    });
    EXPECT_EQ(done, std::vector<int>(Count, 1));
    EXPECT_EQ(buffers[0] + buffers[1] + buffers[2] + buffers[3], Count);
    parallelFor(0, Workers, [](std::size_t, unsigned) { FAIL(); });
}

TEST(ParallelForTest, anExceptionEndsTheWorkAndComesOut)
{
    EXPECT_THROW(parallelFor(100'000, 4,
                             [](std::size_t index, unsigned) {
                                 if (index >= 10) {
                                     throw std::runtime_error("enough");
                                 }
                             }),
                 std::runtime_error);
}

} // namespace vesk
