#include "veltra/platform/testing/manual_run_loop.h"

#include <ctime>

#include <gtest/gtest.h>

namespace veltra {
namespace {

TEST(Clocks, PlatformClocksAgreeWithTheSystemAndCanBeReplaced) {
    const ClockReading first = Clocks::current().monotonic();
    {
        const testing::ManualClocks stopped;
        EXPECT_EQ(Clocks::current().monotonic().nanoseconds, stopped.now);
    }
    const ClockReading second = Clocks::current().monotonic();
    EXPECT_TRUE(first.error == 0 && first.nanoseconds <= second.nanoseconds);
    EXPECT_LE(std::abs(Clocks::current().wall().seconds - std::time(nullptr)), 2);
}

}  // namespace
}  // namespace veltra
