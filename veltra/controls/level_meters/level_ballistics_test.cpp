// SPDX-License-Identifier: MIT
#include "veltra/controls/level_meters/level_ballistics.h"

#include "veltra/base/testing/prelude.h"
#include "veltra/controls/level_meters/decibel_scale.h"
#include "veltra/controls/level_meters/decibel_scale_c.h"
#include "veltra/controls/level_meters/level_ballistics_c.h"

namespace veltra {
namespace {

constexpr Moment kStart{seconds(1.0)};

Moment at(double time) {
    return kStart + seconds(time);
}

// A meter whose display stands at `display` and whose held maximum is 1.
LevelBallistics standing(double display) {
    LevelBallistics meter;
    meter.setFallBackStepTime(0.0);  // falls at once
    meter.setMaxLevelHoldTime(2.0);
    meter.setLevel(1.0F, false, kStart);
    meter.setLevel(static_cast<float>(display), false, kStart);
    return meter;
}

TEST(LevelBallisticsTest, DrawsAgainOnlyWhatCanBeSeenToChange) {
    const struct {
        double display, level;
        bool isForced;
        double seconds;  // since the maximum was raised
        bool isDrawn;
        double maximum;
    } kRows[] = {
        {0.5, 0.5, false, 0.0, false, 1.0},    {0.5, 0.509, false, 0.0, false, 1.0},
        {0.5, 0.491, false, 0.0, false, 1.0},  {0.5, 0.511, false, 0.0, true, 1.0},
        {0.5, 0.489, false, 0.0, true, 1.0},   {0.5, 0.5, true, 0.0, true, 1.0},
        {0.5, 0.5, false, 2.0, false, 1.0},  // not longer than it is held
        {0.5, 0.5, false, 2.001, true, 0.0},   {0.5, 1.0, false, 9.0, true, 0.0},
        {1.0, 1.001, false, 0.0, true, 1.001},  // a new maximum, and the clip light
    };
    for (const auto& row : kRows) {
        LevelBallistics meter = standing(row.display);
        const auto level = static_cast<float>(row.level);
        EXPECT_EQ(meter.setLevel(level, row.isForced, at(row.seconds)), row.isDrawn) << row.level;
        EXPECT_FLOAT_EQ(meter.maxDisplayLevel(), static_cast<float>(row.maximum)) << row.level;
        EXPECT_EQ(meter.displayLevel(), level);
        EXPECT_EQ(meter.peak(), row.level > 1.0);
    }
    LevelBallistics meter = standing(1.2);  // put out while the level stays, it goes on again
    EXPECT_TRUE(meter.peak());
    meter.setPeak(false);
    EXPECT_TRUE(meter.setLevel(1.2F, false, kStart) || meter.peak());
    meter.setLevel(0.5F, false, kStart);
    EXPECT_TRUE(meter.peak());
    meter = LevelBallistics();
    for (const float none : {NAN, -INFINITY})
        EXPECT_TRUE(!meter.setLevel(none, false, kStart) && meter.level() == 0.0F) << none;
}

// Whatever levels come: what must never happen.
TEST(LevelBallisticsTest, KeepsItsLawsWithAnyLevels) {
    std::mt19937 random(7);
    LevelBallistics meter;
    meter.setFallBackStep(0.07F);
    meter.setFallBackStepTime(0.05);
    meter.setMaxLevelHoldTime(0.4);
    Moment now = kStart;
    Moment raised = now;
    for (int i = 0; i < 5000; ++i) {
        const Nanoseconds passed(random() % 60'000'000U);
        now += passed;
        const float before = meter.displayLevel();
        const float held = meter.maxDisplayLevel();
        const bool wasPeak = meter.peak();
        const float level = random() % 2 != 0 ? before + 0.011F * static_cast<float>(random() % 3)
                                              : static_cast<float>(random() % 140U) / 100.0F - 0.1F;
        const bool isDrawn = meter.setLevel(level, false, now);
        const float shown = meter.displayLevel();
        ASSERT_TRUE(shown >= 0.0F && shown <= 1.07F);
        ASSERT_GE(shown, std::min(level, 1.07F)) << "rises at once";
        const double fallen = static_cast<double>(before) - passed.seconds() * 0.07 / 0.05;
        ASSERT_NEAR(shown, std::clamp(std::max(fallen, static_cast<double>(level)), 0.0, 1.07),
                    1e-6);
        if (meter.maxDisplayLevel() > held) raised = now;
        ASSERT_TRUE(meter.maxDisplayLevel() >= shown || meter.maxDisplayLevel() == 0.0F);
        ASSERT_TRUE(meter.maxDisplayLevel() == 0.0F || now - raised <= seconds(0.4 + 1e-6));
        ASSERT_EQ(meter.peak(), wasPeak || shown > 1.0F) << "stays until it is put out";
        if (!isDrawn) {
            ASSERT_NEAR(level, before, 0.01 + 1e-6);
            ASSERT_EQ(meter.maxDisplayLevel(), held);
            ASSERT_EQ(meter.peak(), wasPeak);
        }
        if (random() % 200 == 0) meter.setPeak(false);
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
        {0.1, 0.05, 0.0, -0.5, 1.0},       {0.0, 5e-324, 0.25, 9.0, 1.0},
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
        EXPECT_FALSE(meter.tick(at(20.0)));
        if (!(meter.fallBackStep() > 0.0F) || !std::isfinite(row.stepTime + 1.0)) {
            EXPECT_NEAR(meter.displayLevel(), row.display, 1e-6) << "never falls";
        }
    }
}

TEST(LevelBallistics, MovesInCAsInCpp) {
    LevelBallistics meter;
    VLLevelBallistics* const ofC = VLLevelBallisticsCreate();
    ASSERT_NE(ofC, nullptr);
    EXPECT_EQ(VLLevelBallisticsFallBackStep(ofC), meter.fallBackStep());
    EXPECT_EQ(VLLevelBallisticsFallBackStepTime(ofC), meter.fallBackStepTime());
    EXPECT_EQ(VLLevelBallisticsMaxLevelHoldTime(ofC), meter.maxLevelHoldTime());
    meter.setFallBackStep(0.02F);
    meter.setFallBackStepTime(0.05);
    meter.setMaxLevelHoldTime(0.4);
    VLLevelBallisticsSetFallBackStep(ofC, 0.02F);
    VLLevelBallisticsSetFallBackStepTime(ofC, 0.05);
    VLLevelBallisticsSetMaxLevelHoldTime(ofC, 0.4);

    const auto count = [](std::optional<Nanoseconds> time) { return time ? time->count() : -1; };
    Moment now = kStart;
    for (const double level : {0.5, 1.5, 0.5, 0.0, -1.0, -1.0, 0.3, 0.0, -1.0, -1.0, -1.0}) {
        const std::int64_t nanoseconds = now.sinceStart().count();
        EXPECT_EQ(VLLevelBallisticsTimeToTick(ofC, nanoseconds), count(meter.timeToTick(now)));
        EXPECT_EQ(VLLevelBallisticsTimeToHoldEnd(ofC, nanoseconds),
                  count(meter.timeToHoldEnd(now)));
        if (level < 0.0) {
            EXPECT_EQ(VLLevelBallisticsTick(ofC, nanoseconds), meter.tick(now));
        } else {
            const auto given = static_cast<float>(level);
            EXPECT_EQ(VLLevelBallisticsSetLevel(ofC, given, false, nanoseconds),
                      meter.setLevel(given, false, now));
        }
        EXPECT_EQ(VLLevelBallisticsLevel(ofC), meter.level());
        EXPECT_EQ(VLLevelBallisticsDisplayLevel(ofC), meter.displayLevel());
        EXPECT_EQ(VLLevelBallisticsMaxDisplayLevel(ofC), meter.maxDisplayLevel());
        EXPECT_EQ(VLLevelBallisticsPeak(ofC), meter.peak());
        now += milliseconds(130);
    }
    VLLevelBallisticsSetPeak(ofC, true);
    EXPECT_TRUE(VLLevelBallisticsPeak(ofC));
    VLLevelBallisticsSetLevel(ofC, 1.0F, false, 0);
    EXPECT_TRUE(!VLLevelBallisticsSetLevel(ofC, 1.0F, false, 0) &&
                VLLevelBallisticsSetLevel(ofC, 1.0F, true, 0));
    VLLevelBallisticsDropMaximum(ofC);
    EXPECT_EQ(VLLevelBallisticsMaxDisplayLevel(ofC), 0.0F);
    VLLevelBallisticsDestroy(ofC);
    VLLevelBallistics* const none = nullptr;
    VLLevelBallisticsSetFallBackStep(none, 1.0F);
    VLLevelBallisticsDropMaximum(none);
    VLLevelBallisticsDestroy(none);
    EXPECT_EQ(VLLevelBallisticsFallBackStep(none) + VLLevelBallisticsLevel(none) +
                  VLLevelBallisticsDisplayLevel(none) + VLLevelBallisticsMaxDisplayLevel(none),
              0.0F);
    EXPECT_EQ(VLLevelBallisticsFallBackStepTime(none) + VLLevelBallisticsMaxLevelHoldTime(none), 0);
    EXPECT_FALSE(VLLevelBallisticsSetLevel(none, 1.0F, true, 0) || VLLevelBallisticsTick(none, 0) ||
                 VLLevelBallisticsPeak(none));
    EXPECT_EQ(VLLevelBallisticsTimeToTick(none, 0), -1);
    EXPECT_EQ(VLLevelBallisticsTimeToHoldEnd(none, 0), -1);
    EXPECT_EQ(VLMeterPositionForAmplitude(-0.3F), meterPositionForAmplitude(-0.3F));
    EXPECT_EQ(VLMeterPositionForDecibels(-33.0), meterPositionForDecibels(-33.0));
    EXPECT_EQ(VLDecibelsForMeterPosition(0.3F), decibelsForMeterPosition(0.3F));
    EXPECT_EQ(VLDecibelsForAmplitude(0.3F), decibelsForAmplitude(0.3F));
}

}  // namespace
}  // namespace veltra
