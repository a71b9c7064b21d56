// SPDX-License-Identifier: MIT
#include "veltra/controls/number_editor/number_steps.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

namespace veltra {
namespace {

constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();

TEST(NumberSteps, ADragIsAtLeastTheMinimumAndOtherwiseAsFarAsItWent) {
    struct {
        std::int32_t minimum;
        float from, to;
        bool isFlipped;
        std::int32_t change;
    } const rows[] = {
        {10, 5, 6, false, 10},   {10, 5, 4, false, -10}, {10, 5, 30, false, 25},
        {10, 5, 6, true, -10},   {10, 30, 5, true, 25},  {1, 5, 5, false, 0},
        {10, 5, 15, false, 10},  {1, 5, 5.2F, false, 1}, {1, 5, 4.2F, false, 0},
        {1, 5, 3.8F, false, -1}, {1, 5, 4.2F, true, 0},  {1, 5, 5.2F, true, -1},
        {-3, 0, -1, false, -1},  {1, 0, NAN, false, 0},  {1, 0, INFINITY, true, -1000000000},
        {kLeast, 0, 1, false, 1}};
    for (const auto& row : rows) {
        const NumberSteps steps{row.minimum};
        EXPECT_EQ(steps.dragged(row.from, row.to, row.isFlipped), row.change)
            << row.minimum << ": " << row.from << " to " << row.to;
    }
}

TEST(NumberSteps, TheWheelGoesByTheMinimumAndKeysByOneUnlessAModifierSaysOtherwise) {
    NumberSteps steps{10};
    for (const float turn : {0.2F, 1.0F, 7.0F}) {
        EXPECT_EQ(steps.wheeled(turn), 10);
        EXPECT_EQ(steps.wheeled(-turn), -10);
    }
    EXPECT_EQ(steps.wheeled(0.0F), 0);
    EXPECT_EQ(steps.wheeled(NAN), 0);
    EXPECT_EQ(NumberSteps{kLeast}.wheeled(-1.0F), kMost);
    EXPECT_EQ(steps.keyed(), 1);
    const ModifierFlags all = ModifierFlags(kShiftKeyMask) | kControlKeyMask | kCommandKeyMask;
    EXPECT_EQ(steps.wheeled(1.0F, all), 10);  // neutral at first
    EXPECT_EQ(steps.dragged(0, 3, false, all), 10);
    steps.fine = 2;
    steps.coarse = 100;
    EXPECT_EQ(steps.wheeled(-1.0F, kShiftKeyMask), -2);
    EXPECT_EQ(steps.dragged(0, 3, true, kShiftKeyMask), -6);
    EXPECT_EQ(steps.keyed(kControlKeyMask), 100);
    EXPECT_EQ(steps.keyed(all), 2);
    EXPECT_EQ(steps.keyed(kAlternateKeyMask), 1);
}

TEST(NumberSteps, NumbersStayWithin32Bits) {
    EXPECT_EQ(numberChangedBy(kMost, 1), kMost);
    EXPECT_EQ(numberChangedBy(kLeast, -1), kLeast);
    EXPECT_EQ(numberChangedBy(kLeast, std::numeric_limits<std::int64_t>::max()), kMost);
}

TEST(NumberSteps, PartsOfStepsAddUp) {
    WholeSteps up;
    WholeSteps wheel;
    float steps = 0.0F;
    float notches = 0.0F;
    for (int i = 1; i <= 420; ++i) {
        steps += up.roundedUp(-2.0F / 3.0F);
        notches += wheel.truncated(0.4F);
    }
    EXPECT_EQ(steps, -280.0F);
    EXPECT_EQ(notches, 168.0F);
    EXPECT_EQ(up.roundedUp(0.2F), 1.0F);
    EXPECT_EQ(up.roundedUp(0.2F), 0.0F);
    EXPECT_EQ(up.roundedUp(NAN), 0.0F);
}

}  // namespace
}  // namespace veltra
