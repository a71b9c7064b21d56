// SPDX-License-Identifier: MIT
#include "veltra/platform/poll_run_loop.h"

#include "veltra/platform/clock.h"

#include <csignal>
#include <functional>
#include <thread>

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/time.h>

namespace veltra {
namespace {

struct Target : Anchored {
    void tick() { then(); }
    std::shared_ptr<RunLoopTimer> start(RunLoop& loop, double seconds) {
        return loop.schedule({seconds, this, action<&Target::tick>(), nullptr, true});
    }
    std::function<void()> then = [] {};
};

std::uint64_t now() {
    return Clocks::current().monotonic().nanoseconds;
}

bool isReadable(int descriptor, int milliseconds = 0) {
    pollfd watched{descriptor, POLLIN, 0};
    return ::poll(&watched, 1, milliseconds) == 1;
}

TEST(PollRunLoop, StopComesFromAnyThreadIsNotLostBetweenRunsAndSignalsShortenNone) {
    PollRunLoop loop;
    for (int round = 0; round < 20; ++round) {
        std::thread stopper([&] { loop.stop(); });
        loop.run();
        stopper.join();
        EXPECT_FALSE(loop.runOnce(0.0));
    }
    const std::uint64_t start = now();
    EXPECT_FALSE(loop.runOnce(0.004));  // a stop that was taken leaves nothing to wake by
    EXPECT_GE(now() - start, 4'000'000U);

    const auto before = std::signal(SIGALRM, [](int) {});
    const itimerval often{{0, 1000}, {0, 1000}}, never{};
    ASSERT_EQ(::setitimer(ITIMER_REAL, &often, nullptr), 0);
    EXPECT_FALSE(loop.runFor(0.008));
    EXPECT_GE(now() - start, 12'000'000U);
    ::setitimer(ITIMER_REAL, &never, nullptr);
    std::signal(SIGALRM, before);
    loop.stop();
    EXPECT_TRUE(loop.runFor(10.0));
}

TEST(PollRunLoop, TheDescriptorIsReadableExactlyWhileSomethingIsDue) {
    PollRunLoop loop;
    Target target;
    const auto timer = target.start(loop, 0.003);
    EXPECT_TRUE(isReadable(loop.descriptor(), 60'000));
    EXPECT_EQ(loop.runDue(), 1);
    EXPECT_TRUE(isReadable(loop.descriptor(), 60'000));
    timer->invalidate();
    EXPECT_FALSE(isReadable(loop.descriptor()));
    const auto far = target.start(loop, 1e9), near = target.start(loop, 0.0);
    EXPECT_TRUE(isReadable(loop.descriptor(), 60'000));
    near->invalidate();
    EXPECT_FALSE(isReadable(loop.descriptor()));
}

}  // namespace
}  // namespace veltra
