// SPDX-License-Identifier: MIT
#include "veltra/base/testing/prelude.h"
#include "veltra/platform/testing/manual_run_loop.h"

#include <stdexcept>

namespace veltra {
namespace {

using TimerPointer = std::shared_ptr<RunLoopTimer>;

// Writes its letter at each tick, then does what the test asks for.
struct Pen : Anchored {
    Pen(std::string& text, char sign) : page(text), letter(sign) {}
    void write(RunLoopTimer& timer) {
        page += letter;
        if (then) then(timer);
    }
    std::string& page;
    char letter;
    std::function<void(RunLoopTimer&)> then;
};

class RunLoopTest : public ::testing::Test {
protected:
    TimerPointer every(double time, Pen& pen, RunLoopModes modes = kAllRunLoopModes) {
        return loop.schedule({seconds(time), &pen, action<&Pen::write>(), &pen, true, modes});
    }
    TimerPointer once(double time, Pen& pen) {
        return loop.schedule({seconds(time), &pen, action<&Pen::write>()});
    }
    Moment after(std::int64_t count) const { return start + milliseconds(count); }
    testing::ManualRunLoop loop;
    const Moment start = loop.clocks.now;
    std::string page;
    Pen a{page, 'a'}, b{page, 'b'}, c{page, 'c'};
};

TEST_F(RunLoopTest, FiresInTheOrderOfDueTimeThenAgeToTheNanosecondAndSkipsMissedTicks) {
    const TimerPointer slow = every(0.2, a), quick = every(0.1, b), single = once(0.1, c);
    loop.clocks.now = after(100) - Nanoseconds(1);
    EXPECT_EQ(loop.runDue(), 0);
    EXPECT_EQ(loop.announcements, 3);  // two changes, and one to arm a wake-up again
    loop.clocks.now += Nanoseconds(1);
    EXPECT_EQ(loop.runDue(), 2);
    loop.advance(0.1);
    EXPECT_EQ(page, "bcab");
    slow->invalidate();
    loop.clocks.now = after(550);
    EXPECT_EQ(loop.runDue(), 1);
    EXPECT_EQ(loop.announced, after(600));  // the beat is kept
    b.then = [&](RunLoopTimer&) { loop.clocks.now += milliseconds(250); };
    loop.advance(0.05);
    EXPECT_EQ(loop.announced, after(900));
    b.then = [&](RunLoopTimer&) { loop.clocks.now += milliseconds(100); };
    loop.advance(0.05);
    EXPECT_EQ(loop.announced, after(1100)) << "due again exactly where its own action ended";
    EXPECT_EQ(page, "bcabbbb");
    quick->invalidate();
    EXPECT_EQ(loop.announced, std::nullopt);
    EXPECT_FALSE(quick->isValid() || single->isValid());
}

TEST_F(RunLoopTest, AModeHoldsBackTheTimersOfOtherModesAndANestedLoopTheOneThatRunsIt) {
    const TimerPointer common = every(0.1, a), plain = every(0.1, b, RunLoopMode::Default);
    const TimerPointer held = every(0.25, c, RunLoopMode::ModalPanel | RunLoopMode::EventTracking);
    {
        const RunLoop::ModeScope tracking(loop, RunLoopMode::EventTracking);
        loop.advance(0.2);
        const RunLoop::ModeScope panel(loop, RunLoopMode::ModalPanel);
        loop.advance(0.1);
        EXPECT_EQ(page, "aaca");
    }
    EXPECT_EQ(loop.announced, after(100));  // overdue: at once
    loop.advance(0.0);
    EXPECT_EQ(page, "aacab");
    a.then = [&](RunLoopTimer&) {
        const RunLoop::ModeScope panel(loop, RunLoopMode::ModalPanel);
        loop.advance(0.2);
        page += '.';
    };
    loop.advance(0.1);
    EXPECT_EQ(page, "aacabac.b");
    EXPECT_EQ(loop.nextDeadline(), after(700));
}

TEST_F(RunLoopTest, ADeletedLoopOrTargetLeavesItsTimersInvalidOrSilent) {
    auto own = std::make_unique<testing::ManualRunLoop>();
    auto gone = std::make_unique<Pen>(page, 'x');
    const TimerPointer deleter = own->schedule({milliseconds(100), &a, action<&Pen::write>()});
    const TimerPointer behind =
        own->schedule({milliseconds(100), gone.get(), action<&Pen::write>()});
    const TimerPointer silent =
        own->schedule({milliseconds(50), gone.get(), action<&Pen::write>()});
    gone.reset();
    a.then = [&](RunLoopTimer&) {
        const RunLoop::ModeScope dies(*own, RunLoopMode::ModalPanel);
        own.reset();
    };
    own->advance(0.1);
    behind->fire();
    EXPECT_EQ(page, "a");
    EXPECT_FALSE(deleter->isValid() || behind->isValid() || silent->isValid());
}

TEST_F(RunLoopTest, TimersOnceAtTheirLongestAndByHand) {
    const TimerPointer never = every(std::numeric_limits<double>::infinity(), a);
    const TimerPointer tooFar = every(9'223'372'036.0, a);  // seconds to the end of all moments
    EXPECT_EQ(loop.nextDeadline(), std::nullopt);
    const TimerPointer far = every(9'200'000'000.0, a), single = once(0.5, b);
    single->fire();
    EXPECT_FALSE(single->isValid());
    EXPECT_TRUE(never->isValid() && tooFar->isValid());
    EXPECT_GT(loop.nextDeadline(), after(4'000'000'000'000));
    EXPECT_EQ(page, "b");
}

// Ends in a moment, or, where each step walks past all that is held back, not before the time-out.
TEST_F(RunLoopTest, TimersThatAreHeldBackCostTheOthersNothing) {
    constexpr int kMany = 100'000;
    std::vector<TimerPointer> held;
    for (int count = 0; count < kMany; ++count)
        held.push_back(every(0.001, c, RunLoopMode::ModalPanel));
    const TimerPointer beat = every(0.001, a);
    loop.advance(kMany * 0.001);
    EXPECT_EQ(page, std::string(kMany, 'a'));
}

TEST(RunLoop, ALoopThatDiesIsNobodysCurrentLoop) {
    RunLoop* const before = RunLoop::setCurrent(nullptr);
    {
        RunLoop loop;
        RunLoop::setCurrent(&loop);
        EXPECT_EQ(RunLoop::current(), &loop);
    }
    EXPECT_EQ(RunLoop::setCurrent(before), nullptr);
}

TEST_F(RunLoopTest, ErrorsOfTheClockAndOfActionsLeaveTheLoopInOrder) {
    const TimerPointer first = every(0.1, a), second = every(0.1, b);
    loop.clocks.now = after(100);
    loop.clocks.error = 22;
    EXPECT_EQ(loop.runDue(), 0);
    EXPECT_EQ(every(0.1, c), nullptr);
    loop.clocks.error = 0;
    a.then = [](RunLoopTimer&) { throw std::runtime_error("action"); };
    EXPECT_THROW(loop.runDue(), std::runtime_error);
    EXPECT_EQ(loop.announced, after(100));
    EXPECT_EQ(loop.runDue(), 1);
    EXPECT_EQ(loop.announced, after(200));
    EXPECT_EQ(page, "ab");
}

}  // namespace
}  // namespace veltra
