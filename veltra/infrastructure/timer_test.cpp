#include "veltra/infrastructure/timer.h"

#include "veltra/platform/testing/manual_run_loop.h"

#include <functional>
#include <memory>
#include <vector>

#include <gtest/gtest.h>

namespace veltra {
namespace {

// A control with a timer of its own.
struct Meter : Anchored {
    explicit Meter(double seconds, bool repeats = true)
        : timer(std::make_unique<QkTimer>(seconds, this, action<&Meter::tick>(), this, repeats)) {}
    void tick(QkTimer& sender) {
        EXPECT_EQ(&sender, timer.get());
        validInTick.push_back(sender.isValid());
        if (const auto copy = then) copy();  // the action may delete this meter
    }
    std::vector<bool> validInTick;
    std::function<void()> then;
    std::unique_ptr<QkTimer> timer;
};

class QkTimerTest : public ::testing::Test {
protected:
    testing::ManualRunLoop loop;
};

TEST_F(QkTimerTest, RunsFromStartToStopAsOftenAsWanted) {
    Meter meter(0.1);
    EXPECT_FALSE(meter.timer->isValid());
    meter.timer->fire();
    meter.timer->stop();
    loop.advance(1.0);
    EXPECT_TRUE(meter.validInTick.empty());
    EXPECT_EQ(loop.announcements, 0);

    for (std::size_t round = 1; round <= 3; ++round) {
        meter.timer->start();
        EXPECT_TRUE(meter.timer->isActive());
        loop.advance(0.35);
        meter.timer->stop();
        EXPECT_FALSE(meter.timer->isValid());
        loop.advance(0.35);
        EXPECT_EQ(meter.validInTick, std::vector<bool>(3 * round, true));
    }
    EXPECT_TRUE(meter.timer->isRepeating());
    EXPECT_EQ(meter.timer->userInfo(), &meter);
}

TEST_F(QkTimerTest, ARunningTimerIgnoresAStartAndStartKeepsTheStoredInterval) {
    Meter meter(0.1);
    meter.timer->startWithTimeInterval(0.5);
    meter.timer->startWithTimeInterval(0.01);
    meter.timer->start();
    loop.advance(0.49);
    EXPECT_TRUE(meter.validInTick.empty());
    loop.advance(0.01);
    EXPECT_EQ(meter.validInTick.size(), 1U);

    meter.timer->invalidate();
    meter.timer->startWithTimeInterval(0.02);
    loop.advance(0.02);
    EXPECT_EQ(meter.validInTick.size(), 2U);
    meter.timer->stop();
    meter.timer->start();
    loop.advance(0.099);
    EXPECT_EQ(meter.validInTick.size(), 2U);
    loop.advance(0.001);
    EXPECT_EQ(meter.validInTick.size(), 3U);
}

TEST_F(QkTimerTest, ATimerThatFiresOnceIsIdleInItsActionAndMayStartAgainThere) {
    Meter meter(0.1, false);
    meter.then = [&] {
        if (meter.validInTick.size() < 3) meter.timer->start();
    };
    meter.timer->start();
    loop.advance(0.2);
    EXPECT_TRUE(meter.timer->isValid());
    meter.timer->fire();
    EXPECT_EQ(meter.validInTick, std::vector<bool>(3, false));
    EXPECT_FALSE(meter.timer->isValid());
    loop.advance(1.0);
    EXPECT_EQ(meter.validInTick.size(), 3U);
}

TEST_F(QkTimerTest, FiresInEveryMode) {
    Meter meter(0.1);
    meter.timer->start();
    const RunLoop::ModeScope tracking(loop, RunLoopMode::EventTracking);
    loop.advance(0.1);
    EXPECT_EQ(meter.validInTick.size(), 1U);
    const RunLoop::ModeScope panel(loop, RunLoopMode::ModalPanel);
    loop.advance(0.1);
    EXPECT_EQ(meter.validInTick.size(), 2U);
}

TEST_F(QkTimerTest, ItsActionMayDeleteTheTimerOrTheTarget) {
    for (const bool repeats : {true, false}) {
        for (const bool byHand : {true, false}) {
            Meter owner(0.1, repeats);
            owner.then = [&] { owner.timer.reset(); };
            auto* victim = new Meter(0.1, repeats);
            victim->then = [victim] { delete victim; };
            const WeakPointer<Meter> gone(victim);
            owner.timer->start();
            victim->timer->start();
            if (byHand) {
                owner.timer->fire();
                victim->timer->fire();
            }
            loop.advance(1.0);
            EXPECT_EQ(owner.validInTick, std::vector<bool>{repeats});
            EXPECT_FALSE(gone);
            EXPECT_EQ(loop.nextDeadline(), std::nullopt);
        }
    }
}

TEST_F(QkTimerTest, ATargetThatIsGoneOrDoesNotRespondIsPassedOver) {
    struct Deaf : Anchored {
    } deaf;
    auto meter = std::make_unique<Meter>(0.1);
    QkTimer orphan(0.1, meter.get(), action<&Meter::tick>(), nullptr);
    QkTimer unheard(0.1, &deaf, action<&Meter::tick>(), nullptr);
    QkTimer once(0.1, nullptr, nullptr, nullptr, false);
    meter.reset();
    for (QkTimer* timer : {&orphan, &unheard, &once})
        timer->start();
    loop.advance(0.25);
    EXPECT_TRUE(orphan.isValid() && unheard.isValid());
    EXPECT_FALSE(once.isValid());
}

TEST_F(QkTimerTest, TheProxyEndsAnOwnerThatFiresOnceAndNeedsAnOwner) {
    Meter meter(0.1, false);
    QkTimerProxy proxy(&meter, action<&Meter::tick>(), &loop, meter.timer.get());
    EXPECT_EQ(proxy.target(), &meter);
    EXPECT_EQ(proxy.userInfo(), &loop);
    EXPECT_TRUE(proxy.selector() == action<&Meter::tick>());
    const auto any = loop.schedule({.seconds = 1.0});
    meter.timer->start();
    proxy.action(*any);
    EXPECT_EQ(meter.validInTick, std::vector<bool>{false});
    meter.timer.reset();
    proxy.action(*any);
    QkTimerProxy().action(*any);
    EXPECT_EQ(meter.validInTick.size(), 1U);
}

TEST_F(QkTimerTest, StaysIdleWhenTheClockCannotBeRead) {
    Meter meter(0.1);
    loop.clocks.error = 22;
    meter.timer->start();
    EXPECT_FALSE(meter.timer->isValid());
    loop.clocks.error = 0;
    meter.timer->start();
    EXPECT_TRUE(meter.timer->isValid());
}

}  // namespace
}  // namespace veltra
