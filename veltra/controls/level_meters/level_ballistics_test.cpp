// SPDX-License-Identifier: MIT
#include "veltra/controls/level_meters/level_ballistics.h"

#include "veltra/base/testing/prelude.h"

namespace veltra {
namespace {

constexpr Moment kStart{seconds(1.0)};

Moment at(double time) {
    return kStart + seconds(time);
}

// The rules of a meter one after the other, without regard for anything else.
struct SlowMeter {
    float display = 0.0F, maximum = 0.0F, step = 0.07F;
    double stepTime = 0.05, hold = 0.4, held = 0.0;
    bool peak = false;
    bool setLevel(float level, bool force, double elapsed) {
        const double d = display;
        const double l = level;
        const bool insignificant = (d <= l && d >= l - 0.01) || (d > l && d <= l + 0.01);
        held += elapsed;
        const auto decayed = static_cast<float>(d - elapsed * static_cast<double>(step) / stepTime);
        float next = level > decayed ? level : decayed;
        bool latches = false;
        if (next > 1.0F) latches = !std::exchange(peak, true);
        if (next > 1.0F + step) next = 1.0F + step;
        if (next < 0.0F) next = 0.0F;
        display = next;
        bool draws = !insignificant || force || latches;
        if (next > maximum) {
            maximum = next;
            held = 0.0;
            draws = true;
        } else if (held > hold) {
            held = 0.0;
            if (std::exchange(maximum, 0.0F) > 0.0F) draws = true;
        }
        return draws;
    }
};

TEST(LevelBallisticsTest, FollowsTheRulesStepByStep) {
    LevelBallistics meter;
    SlowMeter slow;
    meter.setFallBackStep(slow.step);
    meter.setFallBackStepTime(slow.stepTime);
    meter.setMaxLevelHoldTime(slow.hold);
    std::mt19937 random(7);
    Moment now = kStart;
    for (int i = 0; i < 5000; ++i) {
        const Nanoseconds passed(i == 0 ? 0 : random() % 60'000'000U);
        now += passed;
        const float level = random() % 4 != 0
                                ? slow.display + 0.011F * static_cast<float>(random() % 3)
                                : static_cast<float>(random() % 140U) / 100.0F - 0.1F;
        if (random() % 200 == 0) meter.setPeak(slow.peak = false);
        const bool force = random() % 50 == 0;
        const bool expected = slow.setLevel(level, force, passed.seconds());
        ASSERT_EQ(meter.setLevel(level, force, now), expected) << i;
        ASSERT_EQ(meter.displayLevel(), slow.display) << i;
        ASSERT_EQ(meter.maxDisplayLevel(), slow.maximum) << i;
        ASSERT_EQ(meter.peak(), slow.peak) << i;
    }
}

// However late the ticks are, and whatever calls come between them: the fall and the time for which
// the maximum is held are those of calls alone.
TEST(LevelBallisticsTest, FallsAtOneRateHoweverTicksAndCallsAreMixed) {
    std::mt19937 random(3);
    for (int run = 0; run < 200; ++run) {
        LevelBallistics meter;
        meter.setFallBackStep(0.02F);
        meter.setFallBackStepTime(0.05);
        meter.setMaxLevelHoldTime(1.0);
        meter.setLevel(1.0F, false, at(0.0));
        double time = 0.0;
        while (true) {
            time += static_cast<double>(random() % 180'000U) * 1e-6;
            if (time >= 1.0) break;
            const auto due = meter.timeToTick(at(time));
            if (random() % 2 == 0) {
                meter.setLevel(0.1F, false, at(time));
                ASSERT_NEAR(meter.displayLevel(), 1.0 - time * 0.4, 1e-5);
            } else if (due && *due == Nanoseconds()) {
                meter.tick(at(time));
                ASSERT_NEAR(meter.displayLevel(), 1.0 - time * 0.4, 0.02 + 1e-5);
            }
            ASSERT_NEAR(meter.timeToHoldEnd(at(time)).value_or(seconds(-1.0)).seconds(),
                        std::max(1.0 - time, 0.0), 1e-6);
        }
    }
}

TEST(LevelBallisticsTest, AnswersOddLevelsSettingsAndTimes) {
    constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
    constexpr double kInfinite = std::numeric_limits<double>::infinity();
    const struct {
        double step, stepTime;
        double level, seconds;  // after a level of 1 and so long
        double display;
    } kRows[] = {
        {0.1, 0.05, 0.0, 0.1, 0.8},        {0.1, 0.05, -3.0, 9.0, 0.0},
        {0.1, 0.05, kNan, 0.1, 0.8},       {0.1, 0.05, kInfinite, 0.1, 1.1},
        {0.1, 0.05, -kInfinite, 9.0, 0.0}, {0.1, 0.05, 1.2, 0.1, 1.1},
        {0.1, 0.0, 0.25, 0.0, 0.25},       {0.1, -1.0, 0.25, 0.1, 0.25},
        {0.1, kNan, 0.25, 0.1, 0.25},      {0.1, kInfinite, 0.25, 9.0, 1.0},
        {0.0, 0.05, 0.25, 9.0, 1.0},       {-0.1, 0.05, 0.25, 9.0, 1.0},
        {kNan, 0.0, 0.25, 9.0, 1.0},       {kInfinite, 0.05, 0.25, 9.0, 1.0},
        {0.1, 0.05, 0.0, -0.5, 1.0},
    };
    for (const auto& row : kRows) {
        LevelBallistics meter;
        meter.setFallBackStep(static_cast<float>(row.step));
        meter.setFallBackStepTime(row.stepTime);
        meter.setLevel(1.0F, false, at(0.0));
        meter.setLevel(static_cast<float>(row.level), false, at(row.seconds));
        EXPECT_NEAR(meter.displayLevel(), row.display, 1e-6)
            << row.step << ' ' << row.stepTime << ' ' << row.level << ' ' << row.seconds;
        for (int i = 0; i < 20; ++i)
            meter.tick(at(20.0));
        EXPECT_TRUE(meter.displayLevel() >= 0.0F && meter.displayLevel() <= 1.1F);
    }
}

}  // namespace
}  // namespace veltra
