#include "veltra/platform/linux/poll_run_loop.h"

#include "veltra/platform/clock.h"

#include <csignal>
#include <functional>
#include <memory>
#include <thread>

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/time.h>

namespace veltra {
namespace {

struct Target : Anchored {
    void tick() {
        ++ticks;
        if (then) then();
    }
    TimerRequest every(double seconds) {
        return {
            .seconds = seconds, .target = this, .action = action<&Target::tick>(), .repeats = true};
    }
    int ticks = 0;
    std::function<void()> then;
};

std::uint64_t now() {
    return Clocks::current().monotonic().nanoseconds;
}

bool isReadable(int descriptor, int milliseconds) {
    pollfd watched{descriptor, POLLIN, 0};
    return ::poll(&watched, 1, milliseconds) == 1;
}

TEST(PollRunLoop, RunsTimersUntilAnActionStopsIt) {
    PollRunLoop loop;
    Target target;
    target.then = [&] {
        if (target.ticks == 3) loop.stop();
    };
    const std::uint64_t start = now();
    const auto timer = loop.schedule(target.every(0.002));
    loop.run();
    EXPECT_EQ(target.ticks, 3);
    EXPECT_GE(now() - start, 6'000'000U);
}

TEST(PollRunLoop, StopComesFromAnyThreadAndIsNotLostBetweenRuns) {
    PollRunLoop loop;
    for (int round = 0; round < 20; ++round) {
        std::thread stopper([&] { loop.stop(); });
        loop.run();
        stopper.join();
        EXPECT_FALSE(loop.runOnce(0.0));
    }
    loop.stop();
    loop.stop();
    EXPECT_TRUE(loop.runFor(10.0));
    EXPECT_FALSE(loop.runOnce(-1.0));
}

TEST(PollRunLoop, SignalsDoNotShortenARun) {
    struct sigaction handler {};
    struct sigaction before {};
    handler.sa_handler = [](int) {};
    ASSERT_EQ(::sigaction(SIGALRM, &handler, &before), 0);
    const itimerval often{{0, 1000}, {0, 1000}};
    const itimerval never{};
    PollRunLoop loop;
    ASSERT_EQ(::setitimer(ITIMER_REAL, &often, nullptr), 0);
    const std::uint64_t start = now();
    EXPECT_FALSE(loop.runFor(0.008));
    EXPECT_GE(now() - start, 8'000'000U);
    ::setitimer(ITIMER_REAL, &never, nullptr);
    ::sigaction(SIGALRM, &before, nullptr);
}

TEST(PollRunLoop, TheDescriptorIsReadableExactlyWhileSomethingIsDue) {
    PollRunLoop loop;
    Target target;
    const auto timer = loop.schedule(target.every(0.003));
    const int descriptor = loop.descriptor();
    ASSERT_GE(descriptor, 0);
    EXPECT_TRUE(isReadable(descriptor, 1000));
    EXPECT_EQ(loop.runDue(), 1);
    EXPECT_TRUE(isReadable(descriptor, 1000));
    timer->invalidate();
    EXPECT_FALSE(isReadable(descriptor, 0));
    const auto far = loop.schedule(target.every(1e9));
    EXPECT_FALSE(isReadable(descriptor, 0));
    const auto near = loop.schedule(target.every(0.0));
    EXPECT_TRUE(isReadable(descriptor, 1000));
}

TEST(PollRunLoop, MayBeDeletedByAnActionThatItRuns) {
    auto* loop = new PollRunLoop;
    Target target;
    target.then = [&] { delete loop; };
    const auto timer = loop->schedule(target.every(0.0));
    loop->run();
    EXPECT_FALSE(timer->isValid());
}

TEST(PollRunLoop, WorksWithoutFileDescriptors) {
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
    const rlimit none{0, before.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
    PollRunLoop loop;
    const int descriptor = loop.descriptor();
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &before), 0);
    EXPECT_EQ(descriptor, -1);
    Target target;
    target.then = [&] { loop.stop(); };
    const auto timer = loop.schedule(target.every(0.002));
    loop.run();
    EXPECT_EQ(target.ticks, 1);
}

}  // namespace
}  // namespace veltra
