// SPDX-License-Identifier: MIT
#include "veltra/infrastructure/nano_timer.h"

#include "veltra/base/testing/prelude.h"
#include "veltra/platform/testing/cancelled_thread.h"
#include "veltra/platform/testing/manual_run_loop.h"

#include <unistd.h>

namespace veltra {
namespace {

struct QKNanoTimerTest : ::testing::Test {
    void measure(QKNanoTimer& timer, std::int64_t nanoseconds) {
        timer.start();
        clocks.now += Nanoseconds(nanoseconds);
        timer.stop();
    }
    testing::ManualClocks clocks;
};

TEST_F(QKNanoTimerTest, TakesOffItsOwnCostAtEachStopButNotWhileRunning) {
    clocks.tick = Nanoseconds(30);  // what a reading of the clock costs
    const auto timer = QKNanoTimer::timer();
    clocks.tick = Nanoseconds();
    timer->start();
    clocks.now += Nanoseconds(100);
    EXPECT_EQ(timer->nanoseconds(), 100U);
    timer->start();            // ignored
    timer->setLoopcounter(9);  // ignored
    clocks.now += Nanoseconds(20);
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
    const auto timer = QKNanoTimer::timer();
    measure(*timer, 8'000'000'000'000);
    timer->setLoopcounter(8);
    EXPECT_EQ(timer->nanoseconds(), 1'000'000'000'000U);
    timer->setLoopcounter(-1);
    EXPECT_EQ(timer->nanoseconds(), 0U);
    timer->setLoopcounter(INT_MAX);
    measure(*timer, 1);
    EXPECT_EQ(timer->nanoseconds(), 0U);
}

TEST_F(QKNanoTimerTest, DescriptionChoosesTheUnitBeforeItRounds) {
    const auto timer = QKNanoTimer::timer();
    // 1.25 is exact: half to even, as printf rounds.
    const std::pair<std::int64_t, const char*> cases[] = {
        {499, "499ns"},
        {500, "0.5us"},
        {1250, "1.2us"},
        {499'999, "500.0us"},
        {500'000, "0.5ms"},
        {499'999'999, "500.0ms"},
        {500'000'000, "0.5s (500.0ms)"},
        {INT64_MAX, "9223372036.9s (9223372036854.8ms)"}};
    for (const auto& [nanoseconds, text] : cases) {
        timer->reset();
        clocks.now = Moment();
        timer->start();
        clocks.now = Moment(Nanoseconds(nanoseconds));
        EXPECT_EQ(timer->description(), text);
    }
}

TEST_F(QKNanoTimerTest, ClockErrorsReadAsZeroAndArePrintedWithoutEndingTheProcess) {
    const auto timer = QKNanoTimer::timer();
    clocks.error = EINVAL;
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(timer->_getclock(), 0U);
    EXPECT_EQ(QKNanoTimer::timer(), nullptr);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(),
              "clock_get_time : 22: Invalid argument\n"
              "host_get_clock_service : 22: Invalid argument\n");
    ::testing::internal::CaptureStderr();
    EXPECT_TRUE(testing::isCancelledOnlyAfter([&timer] { timer->start(); }));
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "clock_get_time : 22: Invalid argument\n");
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    ::close(ends[0]);
    EXPECT_EXIT(::dup2(ends[1], STDERR_FILENO);
                ::_exit(static_cast<int>(timer->_getclock())), ::testing::ExitedWithCode(0), "");
    ::close(ends[1]);
}

}  // namespace
}  // namespace veltra
