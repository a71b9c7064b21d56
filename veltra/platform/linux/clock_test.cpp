#include "veltra/platform/clock.h"

#include <ctime>

#include <gtest/gtest.h>

namespace veltra {
namespace {

class StoppedClocks final : public Clocks {
public:
    ClockReading monotonic() const noexcept override { return {42, 0}; }
    WallTime wall() const noexcept override { return {7, 8}; }
};

TEST(Clocks, PlatformClocksAgreeWithTheSystemAndCanBeReplaced) {
    const ClockReading first = Clocks::current().monotonic();
    const ClockReading second = Clocks::current().monotonic();
    EXPECT_EQ(first.error, 0);
    EXPECT_LE(first.nanoseconds, second.nanoseconds);
    EXPECT_NEAR(static_cast<double>(Clocks::current().wall().seconds),
                static_cast<double>(std::time(nullptr)), 2.0);

    const StoppedClocks stopped;
    EXPECT_EQ(Clocks::install(&stopped), nullptr);
    EXPECT_EQ(Clocks::current().monotonic().nanoseconds, 42U);
    EXPECT_EQ(Clocks::current().wall().nanoseconds, 8);
    EXPECT_EQ(Clocks::install(nullptr), &stopped);
    EXPECT_GE(Clocks::current().monotonic().nanoseconds, second.nanoseconds);
}

}  // namespace
}  // namespace veltra
