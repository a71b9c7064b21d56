#include "veltra/infrastructure/nano_timer.h"

#include "veltra/platform/testing/manual_run_loop.h"

#include <cerrno>
#include <climits>
#include <utility>

#include <gtest/gtest.h>

namespace veltra {
namespace {

using ::testing::internal::CaptureStderr;
using ::testing::internal::GetCapturedStderr;

class QKNanoTimerTest : public ::testing::Test {
protected:
    // A timer whose clock takes `cost` nanoseconds for a reading, and stands still afterwards.
    std::unique_ptr<QKNanoTimer> calibrated(std::uint64_t cost) {
        clocks.tick = cost;
        auto made = QKNanoTimer::timer();
        clocks.tick = 0;
        return made;
    }
    void measure(QKNanoTimer& timer, std::uint64_t nanoseconds) {
        timer.start();
        clocks.now += nanoseconds;
        timer.stop();
    }
    testing::ManualClocks clocks;
};

TEST_F(QKNanoTimerTest, TakesOffItsOwnCostAtEachStopButNotWhileRunning) {
    const auto timer = calibrated(30);
    EXPECT_EQ(timer->nanoseconds(), 0U);
    timer->start();
    clocks.now += 100;
    EXPECT_EQ(timer->nanoseconds(), 100U);
    timer->start();            // ignored
    timer->setLoopcounter(9);  // ignored
    clocks.now += 20;
    timer->stop();
    timer->stop();  // ignored
    EXPECT_EQ(timer->nanoseconds(), 90U);
    measure(*timer, 20);  // shorter than the cost: counts with 0
    EXPECT_EQ(timer->nanoseconds(), 45U);
    timer->start();
    timer->reset();
    timer->stop();
    EXPECT_EQ(timer->nanoseconds(), 0U);
    measure(*timer, 130);  // the correction outlives a reset
    EXPECT_EQ(timer->nanoseconds(), 100U);
}

TEST_F(QKNanoTimerTest, CountsDivideUnsignedAndWrap) {
    const auto timer = calibrated(0);
    measure(*timer, 1000);
    const std::pair<std::int32_t, std::uint64_t> cases[] = {{8, 125}, {-1, 0}, {0, 0}};
    for (const auto& [count, average] : cases) {
        timer->setLoopcounter(count);
        EXPECT_EQ(timer->nanoseconds(), average);
    }
    timer->setLoopcounter(INT_MAX);
    measure(*timer, 1);
    EXPECT_EQ(timer->nanoseconds(), 0U);
}

TEST_F(QKNanoTimerTest, DescriptionChoosesTheUnitBeforeItRounds) {
    const auto timer = calibrated(0);
    const struct {
        std::uint64_t nanoseconds;
        const char* text;
    } cases[] = {
        {0, "0ns"},
        {499, "499ns"},
        {500, "0.5us"},
        {1250, "1.2us"},  // 1.25 is exact: half to even, as printf rounds
        {499'949, "499.9us"},
        {499'999, "500.0us"},
        {500'000, "0.5ms"},
        {499'999'999, "500.0ms"},
        {500'000'000, "0.5s (500.0ms)"},
        {600'000'000, "0.6s (600.0ms)"},
        {90'061'000'000'000, "90061.0s (90061000.0ms)"},
        {UINT64_MAX, "18446744073.7s (18446744073709.6ms)"},
    };
    for (const auto& each : cases) {
        timer->reset();
        clocks.now = 0;
        timer->start();
        clocks.now = each.nanoseconds;
        EXPECT_EQ(timer->description(), each.text);
    }
}

TEST_F(QKNanoTimerTest, ClockErrorsArePrintedAndReadAsZero) {
    const auto timer = calibrated(0);
    clocks.error = EINVAL;
    CaptureStderr();
    EXPECT_EQ(timer->_getclock(), 0U);
    EXPECT_EQ(GetCapturedStderr(), "clock_get_time : 22: Invalid argument\n");
    CaptureStderr();
    EXPECT_EQ(QKNanoTimer::timer(), nullptr);
    EXPECT_EQ(GetCapturedStderr(), "host_get_clock_service : 22: Invalid argument\n");
}

}  // namespace
}  // namespace veltra
