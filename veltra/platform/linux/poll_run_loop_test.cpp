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
    std::shared_ptr<RunLoopTimer> start(RunLoop& loop, double time) {
        return loop.schedule({seconds(time), this, action<&Target::tick>(), nullptr, true});
    }
    std::function<void()> then = [] {};
};

Moment now() {
    return Clocks::current().monotonic().moment();
}

bool isReadable(int descriptor, int timeout = 0) {
    pollfd watched{descriptor, POLLIN, 0};
    return ::poll(&watched, 1, timeout) == 1;
}

TEST(PollRunLoop, StopComesFromAnyThreadIsNotLostBetweenRunsAndSignalsShortenNone) {
    PollRunLoop loop;
    for (int round = 0; round < 20; ++round) {
        std::thread stopper([&] { loop.stop(); });
        loop.run();
        stopper.join();
        EXPECT_FALSE(loop.runOnce(Nanoseconds()));
    }
    const Moment start = now();
    EXPECT_FALSE(loop.runOnce(milliseconds(4)));  // a stop that was taken leaves nothing to wake by
    EXPECT_GE(now() - start, milliseconds(4));

    const auto before = std::signal(SIGALRM, [](int) {});
    const itimerval often{{0, 1000}, {0, 1000}}, never{};
    ASSERT_EQ(::setitimer(ITIMER_REAL, &often, nullptr), 0);
    EXPECT_FALSE(loop.runFor(milliseconds(8)));
    EXPECT_GE(now() - start, milliseconds(12));
    ::setitimer(ITIMER_REAL, &never, nullptr);
    std::signal(SIGALRM, before);
    loop.stop();
    EXPECT_TRUE(loop.runFor(Nanoseconds::longest()));
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
