// SPDX-License-Identifier: MIT
#include "veltra/platform/poll_run_loop.h"

#include "veltra/base/testing/prelude.h"
#include "veltra/platform/clock.h"
#include "veltra/platform/testing/child_process.h"

#include <chrono>
#include <csignal>

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/resource.h>
#include <sys/time.h>

namespace {
std::atomic<void (*)()> beforeWake{nullptr};
}

// In the place of the C library's, so that a test can hold a thread in the middle of stop().
extern "C" int eventfd_write(int descriptor, eventfd_t value) {
    if (const auto hold = beforeWake.load()) hold();
    return ::write(descriptor, &value, sizeof value) == sizeof value ? 0 : -1;
}

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
    ::setitimer(ITIMER_REAL, &often, nullptr);
    EXPECT_FALSE(loop.runFor(milliseconds(8)));
    EXPECT_GE(now() - start, milliseconds(12));
    ::setitimer(ITIMER_REAL, &never, nullptr);
    std::signal(SIGALRM, before);
    loop.stop();
    EXPECT_TRUE(loop.runFor(Nanoseconds::longest()));
}

// The usual worker: its thread has a loop, the owner calls stop(), then join(). Here the loop ends
// on the flag alone, is destroyed, and a file of the host's takes its place, all before stop()
// wakes it.
TEST(PollRunLoop, MayBeDestroyedWhileTheStopThatEndedItIsUnderWay) {
    static std::atomic<bool> isGone;
    isGone = false;
    std::atomic<PollRunLoop*> running{nullptr};
    eventfd_t strayCount = 0;
    std::thread worker([&] {
        {
            PollRunLoop loop;
            running = &loop;
            while (!loop.runOnce(Nanoseconds()))
                std::this_thread::yield();
        }
        const int file = ::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
        isGone = true;
        while (beforeWake.load() != nullptr)
            std::this_thread::yield();
        EXPECT_EQ(::eventfd_read(file, &strayCount), -1) << "stop() wrote to a foreign descriptor";
        ::close(file);
    });
    while (running == nullptr)
        std::this_thread::yield();
    beforeWake = [] {
        while (!isGone)
            std::this_thread::yield();
    };
    running.load()->stop();
    beforeWake = nullptr;
    worker.join();
}

TEST(PollRunLoop, AForkedChildNeitherDisarmsNorWakesItsParentAndHasALoopOfItsOwn) {
    PollRunLoop loop;
    Target target;
    const auto timer = target.start(loop, 0.02);
    const int inherited = loop.descriptor();
    EXPECT_TRUE(testing::holdsInChild([&] {
        loop.stop();
        timer->invalidate();  // as a static timer does when the child ends by exit()
        return loop.runOnce(Nanoseconds());
    }));
    EXPECT_TRUE(isReadable(inherited, 1000)) << "the parent's alarm clock was stopped";
    timer->invalidate();
    const Moment start = now();
    EXPECT_FALSE(loop.runOnce(milliseconds(4)));
    EXPECT_GE(now() - start, milliseconds(4)) << "the child woke the parent";

    const auto again = target.start(loop, 0.001);
    EXPECT_TRUE(testing::holdsInChild([&] {
        const bool hasOwn = loop.descriptor() != inherited && isReadable(loop.descriptor(), 1000);
        target.then = [&] { std::thread([&] { loop.stop(); }).join(); };
        loop.run();
        return hasOwn;
    }));
}

TEST(PollRunLoop, AnActionMayDeleteTheLoopThatRunsIt) {
    for (const bool isTimed : {false, true}) {
        // What is left of the loop holds nothing that a round could live on.
        alignas(PollRunLoop) std::byte memory[sizeof(PollRunLoop)];
        auto* const loop = new (memory) PollRunLoop;
        Target target;
        target.then = [&] {
            loop->~PollRunLoop();
            std::memset(memory, 0, sizeof memory);
        };
        const auto timer = target.start(*loop, 0.0);
        isTimed ? static_cast<void>(loop->runFor(seconds(10))) : loop->run();
        EXPECT_FALSE(timer->isValid());
    }
}

TEST(PollRunLoop, StopsAlsoWhenTheProcessIsOutOfDescriptors) {
#ifdef VELTRA_SANITIZED
    GTEST_SKIP() << "sanitizers need descriptors of their own";
#endif
    EXPECT_TRUE(testing::holdsInChild([] {
        const rlimit none{0, 0};
        ::setrlimit(RLIMIT_NOFILE, &none);
        PollRunLoop loop;
        std::atomic<bool> hasBegun{false};
        Target target;
        target.then = [&] { hasBegun = true; };
        const auto timer = loop.schedule({Nanoseconds(), &target, action<&Target::tick>()});
        std::thread stopper([&] {
            while (!hasBegun)
                std::this_thread::yield();
            std::this_thread::sleep_for(std::chrono::milliseconds(20));  // until it waits
            loop.stop();
        });
        loop.run();
        stopper.join();
        return loop.descriptor() == -1;
    }));
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
