#include "veltra/platform/testing/manual_run_loop.h"

#include <functional>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>

#include <gtest/gtest.h>

namespace veltra {
namespace {

using testing::ManualRunLoop;
using TimerPointer = std::shared_ptr<RunLoopTimer>;

// Writes its letter at each tick, then does what the test asks for.
struct Pen : Anchored {
    Pen(std::string& text, char sign) : page(text), letter(sign) {}
    void write(RunLoopTimer& timer) {
        page += letter;
        if (const auto copy = then) copy(timer);  // the action may delete this pen
    }
    TimerRequest every(double seconds, RunLoopModes modes = RunLoopMode::Default) {
        return {.seconds = seconds,
                .target = this,
                .action = action<&Pen::write>(),
                .repeats = true,
                .modes = modes};
    }
    TimerRequest once(double seconds) {
        TimerRequest request = every(seconds);
        request.repeats = false;
        return request;
    }
    std::string& page;
    char letter;
    std::function<void(RunLoopTimer&)> then;
};

class RunLoopTest : public ::testing::Test {
protected:
    ManualRunLoop loop;
    std::string page;
    Pen a{page, 'a'};
    Pen b{page, 'b'};
    Pen c{page, 'c'};
};

TEST_F(RunLoopTest, FiresInTheOrderOfDueTimeThenAgeToTheNanosecond) {
    const TimerPointer slow = loop.schedule(a.every(0.2));
    const TimerPointer quick = loop.schedule(b.every(0.1));
    loop.schedule(c.once(0.1));
    const std::uint64_t start = loop.clocks.now;
    EXPECT_EQ(loop.nextDeadline(), start + 100'000'000);
    loop.clocks.now = start + 99'999'999;
    EXPECT_EQ(loop.runDue(), 0);
    loop.clocks.now = start + 100'000'000;
    EXPECT_EQ(loop.runDue(), 2);
    EXPECT_EQ(page, "bc");
    loop.advance(0.1);
    EXPECT_EQ(page, "bcab");
    slow->invalidate();
    quick->invalidate();
    EXPECT_EQ(loop.announced, std::nullopt);
    loop.advance(1.0);
    EXPECT_EQ(page, "bcab");
}

TEST_F(RunLoopTest, MissedTicksAreSkippedAndTheBeatIsKept) {
    const TimerPointer timer = loop.schedule(a.every(0.1));
    const std::uint64_t start = loop.clocks.now;
    loop.clocks.now = start + 350'000'000;
    EXPECT_EQ(loop.runDue(), 1);
    EXPECT_EQ(loop.nextDeadline(), start + 400'000'000);

    a.then = [&](RunLoopTimer&) { loop.clocks.now += 250'000'000; };  // a slow action
    loop.clocks.now = start + 400'000'000;
    EXPECT_EQ(loop.runDue(), 1);
    EXPECT_EQ(loop.nextDeadline(), start + 700'000'000);
    EXPECT_EQ(page, "aa");
}

TEST_F(RunLoopTest, OddIntervalsAreTamed) {
    constexpr double kInfinite = std::numeric_limits<double>::infinity();
    constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();
    const std::uint64_t start = loop.clocks.now;
    for (const double seconds : {0.0, -1.0, -kInfinite, kNoNumber}) {
        const TimerPointer timer = loop.schedule(a.every(seconds));
        EXPECT_EQ(timer->interval(), 0.0001) << seconds;
        EXPECT_EQ(loop.nextDeadline(), start + 100'000) << seconds;
        timer->invalidate();
    }
    for (const double seconds : {kInfinite, 1e300, 1e10}) {
        const TimerPointer timer = loop.schedule(a.every(seconds));
        EXPECT_EQ(loop.nextDeadline(), std::nullopt) << seconds;
        EXPECT_TRUE(timer->isValid());
        timer->invalidate();
    }
    const TimerPointer shortest = loop.schedule(a.every(1e-300));
    EXPECT_EQ(loop.nextDeadline(), start + 1);
    loop.clocks.now = start + 5;
    EXPECT_EQ(loop.runDue(), 1);
    EXPECT_EQ(loop.nextDeadline(), start + 6);
    loop.clocks.now = UINT64_MAX - 3;
    const TimerPointer late = loop.schedule(b.every(1.0));
    EXPECT_EQ(loop.runDue(), 1);
    EXPECT_EQ(loop.nextDeadline(), UINT64_MAX - 2);
}

TEST_F(RunLoopTest, AModeHoldsBackTheTimersOfOtherModes) {
    const TimerPointer common = loop.schedule(a.every(0.1, RunLoopModes::all()));
    const TimerPointer plain = loop.schedule(b.every(0.1));
    const TimerPointer modal =
        loop.schedule(c.every(0.25, RunLoopMode::ModalPanel | RunLoopMode::EventTracking));
    {
        const RunLoop::ModeScope tracking(loop, RunLoopMode::EventTracking);
        loop.advance(0.2);
        EXPECT_EQ(page, "aa");
        const RunLoop::ModeScope panel(loop, RunLoopMode::ModalPanel);
        loop.advance(0.1);
        EXPECT_EQ(page, "aaca");
        common->invalidate();
        modal->invalidate();
        EXPECT_EQ(loop.announced, std::nullopt);
    }
    EXPECT_EQ(loop.mode(), RunLoopMode::Default);
    EXPECT_LT(loop.announced, loop.clocks.now);  // overdue: at once
    loop.runDue();
    EXPECT_EQ(page, "aacab");
}

TEST_F(RunLoopTest, FireByHandKeepsTheBeatOfRepeatingTimersAndEndsOthers) {
    const TimerPointer repeating = loop.schedule(a.every(0.1));
    const TimerPointer single = loop.schedule(b.once(0.1));
    bool wasValid = true;
    b.then = [&](RunLoopTimer& timer) { wasValid = timer.isValid(); };
    const auto deadline = loop.nextDeadline();
    loop.clocks.now += 30'000'000;
    repeating->fire();
    single->fire();
    single->fire();
    EXPECT_EQ(page, "ab");
    EXPECT_FALSE(wasValid);
    EXPECT_EQ(loop.nextDeadline(), deadline);
    repeating->invalidate();
    repeating->fire();
    EXPECT_EQ(page, "ab");
}

TEST_F(RunLoopTest, ActionsMayAddAndCancelTimersOfTheSameMoment) {
    const TimerPointer first = loop.schedule(a.once(0.1));
    TimerPointer second = loop.schedule(b.every(0.1));
    const std::weak_ptr<RunLoopTimer> watched = second;
    a.then = [&](RunLoopTimer&) {
        second->invalidate();
        second.reset();
        loop.schedule(c.once(0.0));
    };
    c.then = [&](RunLoopTimer& timer) { timer.invalidate(); };
    loop.advance(0.15);
    EXPECT_EQ(page, "ac");
    EXPECT_TRUE(watched.expired());
}

TEST_F(RunLoopTest, ANestedLoopRunsTheOthersAndNeverTheTimerThatRunsIt) {
    const TimerPointer outer = loop.schedule(a.every(0.1, RunLoopModes::all()));
    const TimerPointer inner = loop.schedule(b.every(0.1, RunLoopModes::all()));
    const TimerPointer plain = loop.schedule(c.every(0.1));
    a.then = [&](RunLoopTimer&) {
        page += '(';
        const RunLoop::ModeScope panel(loop, RunLoopMode::ModalPanel);
        loop.advance(0.2);
        page += ')';
    };
    loop.advance(0.1);
    EXPECT_EQ(page, "a(bbb)c");
    EXPECT_EQ(loop.nextDeadline(), loop.clocks.now + 100'000'000);  // one beat for all three
}

TEST_F(RunLoopTest, ADeletedLoopOrTargetLeavesItsTimersInvalidOrSilent) {
    auto own = std::make_unique<ManualRunLoop>();
    auto pen = std::make_unique<Pen>(page, 'x');
    const TimerPointer deleter = own->schedule(a.every(0.1));
    const TimerPointer behind = own->schedule(b.every(0.1));
    const TimerPointer silent = own->schedule(pen->every(0.05));
    pen.reset();
    a.then = [&](RunLoopTimer&) {
        const RunLoop::ModeScope dies(*own, RunLoopMode::Default);
        own.reset();
    };
    own->advance(0.05);
    EXPECT_TRUE(silent->isValid());
    own->advance(0.05);
    EXPECT_EQ(page, "a");
    EXPECT_FALSE(deleter->isValid() || behind->isValid() || silent->isValid());
    behind->fire();
    behind->invalidate();
    EXPECT_EQ(page, "a");
}

TEST_F(RunLoopTest, AnUnreadableClockFiresNothingAndBreaksNothing) {
    const TimerPointer timer = loop.schedule(a.every(0.1));
    loop.clocks.now += 200'000'000;
    loop.clocks.error = 22;
    EXPECT_EQ(loop.runDue(), 0);
    EXPECT_EQ(loop.schedule(b.every(0.1)), nullptr);
    loop.clocks.error = 0;
    a.then = [&](RunLoopTimer&) { loop.clocks.error = 22; };
    EXPECT_EQ(loop.runDue(), 1);
    EXPECT_TRUE(timer->isValid());
}

TEST_F(RunLoopTest, AnActionThatThrowsLeavesTheLoopInOrder) {
    const TimerPointer thrower = loop.schedule(a.every(0.1));
    const TimerPointer behind = loop.schedule(b.every(0.1));
    a.then = [](RunLoopTimer&) { throw std::runtime_error("action"); };
    loop.clocks.now += 100'000'000;
    EXPECT_THROW(loop.runDue(), std::runtime_error);
    EXPECT_EQ(loop.announced, loop.clocks.now);
    EXPECT_EQ(loop.runDue(), 1);
    EXPECT_EQ(loop.announced, loop.clocks.now + 100'000'000);
    EXPECT_EQ(page, "ab");
}

TEST_F(RunLoopTest, EachThreadHasItsOwnLoopUntilOneIsSet) {
    EXPECT_EQ(RunLoop::current(), &loop);
    RunLoop* other = nullptr;
    TimerPointer left;
    std::thread([&] {
        other = RunLoop::current();
        EXPECT_EQ(other, RunLoop::current());
        left = other->schedule(a.every(0.1));
        EXPECT_TRUE(left->isValid());
        {
            const ManualRunLoop set;
            EXPECT_EQ(RunLoop::current(), &set);
        }
        EXPECT_EQ(RunLoop::current(), other);
    }).join();
    EXPECT_NE(other, &loop);
    EXPECT_FALSE(left->isValid());
}

}  // namespace
}  // namespace veltra
