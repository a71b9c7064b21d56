// SPDX-License-Identifier: MIT
#include "veltra/infrastructure/timer.h"

#include "veltra/base/testing/prelude.h"
#include "veltra/infrastructure/timer_c.h"
#include "veltra/platform/run_loop_c.h"
#include "veltra/platform/testing/manual_run_loop.h"

namespace veltra {
namespace {

// A control with a timer of its own. Writes down whether the timer is (v)alid in its action or not.
struct Meter : Anchored {
    explicit Meter(double seconds, bool repeats = true)
        : timer(std::make_unique<QkTimer>(seconds, this, action<&Meter::tick>(), this, repeats)) {}
    void tick(QkTimer& sender) {
        EXPECT_EQ(&sender, timer.get());
        ticks += sender.isValid() ? 'v' : '-';
        if (const auto copy = then) copy();  // may delete this meter
    }
    std::string ticks;
    std::function<void()> then;
    std::unique_ptr<QkTimer> timer;
};

struct QkTimerTest : ::testing::Test {
    testing::ManualRunLoop loop;
};

TEST_F(QkTimerTest, RunsInEveryModeFromStartToStopAndKeepsItsStoredInterval) {
    Meter meter(0.1);
    meter.timer->fire();
    meter.timer->stop();
    EXPECT_FALSE(meter.timer->isValid());
    EXPECT_EQ(meter.timer->userInfo(), &meter);
    EXPECT_EQ(loop.descriptor(), -1);  // one that its tests drive

    meter.timer->startWithTimeInterval(0.5);
    meter.timer->startWithTimeInterval(0.01);  // ignored: it runs
    meter.timer->start();                      // likewise
    loop.advance(0.499);
    EXPECT_EQ(meter.ticks, "");
    loop.advance(0.001);
    EXPECT_EQ(meter.ticks, "v");
    meter.timer->invalidate();
    meter.timer->start();
    for (const RunLoopMode mode : {RunLoopMode::EventTracking, RunLoopMode::ModalPanel}) {
        const RunLoop::ModeScope scope(loop, mode);
        loop.advance(0.1);
    }
    EXPECT_EQ(meter.ticks, "vvv");
    meter.timer->stop();
    EXPECT_FALSE(meter.timer->isActive() || loop.nextDeadline());
}

TEST_F(QkTimerTest, ATimerThatFiresOnceIsIdleInItsActionAndMayStartAgainThere) {
    Meter meter(0.1, false);
    meter.then = [&] {
        if (meter.ticks.size() < 3) meter.timer->start();
    };
    meter.timer->start();
    loop.advance(0.2);
    EXPECT_TRUE(meter.timer->isValid());
    meter.timer->fire();
    loop.advance(1.0);
    EXPECT_EQ(meter.ticks, "---");
}

TEST_F(QkTimerTest, InANestedLoopItsOwnActionHoldsItBackUntilItIsStartedAgain) {
    Meter meter(0.1);
    meter.timer->start();
    bool isRestarting = false;
    meter.then = [&] {
        if (loop.depth() > 1) return;
        if (isRestarting) {
            meter.timer->stop();
            meter.timer->start();
        }
        loop.advance(0.15);
    };
    loop.advance(0.1);
    EXPECT_EQ(meter.ticks, "v");
    isRestarting = true;
    loop.advance(0.1);
    EXPECT_EQ(meter.ticks, "vvv");
}

TEST_F(QkTimerTest, ItsActionMayDeleteTheTimerOrTheTarget) {
    for (const bool repeats : {true, false}) {
        for (const bool byHand : {true, false}) {
            Meter owner(0.1, repeats);
            owner.then = [&] { owner.timer.reset(); };
            auto* victim = new Meter(0.1, repeats);
            victim->then = [victim] { delete victim; };
            const WeakPointer<Meter> gone(victim);
            for (QkTimer* timer : {owner.timer.get(), victim->timer.get()}) {
                timer->start();
                if (byHand) timer->fire();
            }
            loop.advance(1.0);
            EXPECT_EQ(owner.ticks, repeats ? "v" : "-");
            EXPECT_FALSE(gone || loop.nextDeadline());
        }
    }
}

TEST_F(QkTimerTest, WhatCannotBeSentIsPassedOver) {
    struct Deaf : Anchored {
    } deaf;
    auto meter = std::make_unique<Meter>(0.1, false);
    const auto any = loop.schedule({});
    QkTimerProxy proxy(meter.get(), action<&Meter::tick>(), &loop, meter->timer.get());
    meter->timer->start();
    proxy.action(*any);  // ends the owner, which fires once
    EXPECT_EQ(meter->ticks, "-");
    meter->timer.reset();
    proxy.action(*any);
    EXPECT_EQ(meter->ticks, "-");

    QkTimer orphan(0.1, meter.get(), action<&Meter::tick>(), nullptr);
    QkTimer unheard(0.1, &deaf, action<&Meter::tick>(), nullptr);
    meter.reset();
    loop.clocks.error = 22;
    orphan.start();
    EXPECT_FALSE(orphan.isValid());
    loop.clocks.error = 0;
    orphan.start();
    unheard.start();
    loop.advance(0.25);
    EXPECT_TRUE(orphan.isValid() && unheard.isValid());
}

TEST_F(QkTimerTest, CallsAFunctionOfC) {
    struct Player {
        int ticks = 0;
        VLTimer* timer = nullptr;
    } player;
    const VLTimerCallback play = [](VLTimer* timer, void* context) {
        auto& self = *static_cast<Player*>(context);
        EXPECT_EQ(timer, self.timer);
        if (++self.ticks == 3) VLTimerDestroy(timer);
    };
    VLRunLoop* const host = VLRunLoopCurrent();
    EXPECT_EQ(VLTimerCreate(1.0, true, nullptr, &player), nullptr);
    player.timer = VLTimerCreate(0.1, true, play, &player);
    VLTimerFire(player.timer);  // idle: nothing
    EXPECT_EQ(VLRunLoopTimeToDeadline(host), -1);
    loop.clocks.error = 22;
    EXPECT_FALSE(VLTimerStart(player.timer));
    loop.clocks.error = 0;
    EXPECT_TRUE(VLTimerStart(player.timer) && VLTimerIsActive(player.timer));
    EXPECT_EQ(VLRunLoopTimeToDeadline(host), 100'000'000);
    VLTimerFire(player.timer);
    loop.advance(0.1);
    loop.clocks.now += milliseconds(150);
    EXPECT_EQ(VLRunLoopTimeToDeadline(host), 0);
    EXPECT_EQ(VLRunLoopRunDue(host), 1);
    EXPECT_TRUE(player.ticks == 3 && VLRunLoopTimeToDeadline(host) == -1);

    player = {0, VLTimerCreate(0.1, false, play, &player)};
    VLTimerStart(player.timer);
    loop.advance(1.0);
    EXPECT_FALSE(player.ticks != 1 || VLTimerIsActive(player.timer));
    VLTimerStart(player.timer);
    VLTimerStop(player.timer);
    loop.advance(1.0);
    EXPECT_EQ(player.ticks, 1);
    VLTimerDestroy(player.timer);
    EXPECT_EQ(VLRunLoopRunDue(nullptr) + VLRunLoopDescriptor(nullptr), -1);
    EXPECT_FALSE(VLTimerStart(nullptr) || VLTimerIsActive(nullptr));
}

}  // namespace
}  // namespace veltra
