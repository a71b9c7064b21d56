// SPDX-License-Identifier: MIT
#include "veltra/controls/sliders/slider_tracking.h"

#include "veltra/base/testing/prelude.h"

namespace veltra {
namespace {

constexpr SliderTravel travel(bool isVertical, bool isFlipped) {
    return {{{10, 20}, {isVertical ? 30.0F : 110.0F, isVertical ? 110.0F : 30.0F}},
            10.0F,
            isVertical,
            isFlipped,
            -50.0,
            50.0};  // a value a point
}

TEST(SliderTravels, RoundWholePointsToTheSmallerValueInEveryDirection) {
    struct Case {
        bool isVertical, isFlipped;
        float position, grab;
        double value;
    };
    const Case cases[] = {
        {false, false, 15, 0, -50},   {false, true, 115, 0, 50},  {false, false, 40.9F, 0, -25},
        {false, true, 40.9F, 0, -25}, {false, false, 45, 5, -25}, {false, false, 2, 0, -50},
        {false, false, 900, 0, 50},   {true, false, 25, 0, -50},  {true, false, 50.9F, 0, -25},
        {true, false, 52, 2, -25},    {true, true, 25, 0, 50},    {true, true, 125, 0, -50},
        {true, true, 50.1F, 0, 24},   {true, true, 50, 0, 25},    {true, true, 900, 0, -50},
        {true, true, 48, -2, 25},
    };
    for (const Case& row : cases) {
        EXPECT_EQ(travel(row.isVertical, row.isFlipped).valueAt(row.position, row.grab, 7),
                  row.value)
            << row.isVertical << row.isFlipped << ' ' << row.position;
    }
    SliderTravel none = travel(false, false);
    none.knob = 110.0F;
    EXPECT_EQ(none.valueAt(40, 0, 7), 7.0);
    EXPECT_EQ(none.knobOriginOf(7), 10.0F);
    none = travel(false, false);
    none.maximum = none.minimum;
    EXPECT_EQ(none.knobOriginOf(NAN), 10.0F);
}

// A grabbed knob stays where it is, and follows each further point by a point.
TEST(SliderTravels, KeepTheGrabOffset) {
    for (const bool isVertical : {false, true}) {
        for (const bool isFlipped : {false, true}) {
            const SliderTravel way = travel(isVertical, isFlipped);
            const int up = way.isReversed() ? -1 : 1;
            for (double value = -49.0; value < 49.0; value += 1.0) {
                const float middle = way.middleOf(value);
                for (const float off : {-4.0F, 0.0F, 3.25F}) {
                    const float grab = way.grabOffsetAt(middle + off, value);
                    const float point = middle + grab;
                    EXPECT_NEAR(way.valueAt(point, grab, 0), value, 1e-9);
                    EXPECT_NEAR(way.valueAt(point + static_cast<float>(up), grab, 0), value + 1,
                                1e-9);
                }
            }
        }
    }
}

TEST(MagneticMarks, CaptureWhatIsCloserThanTheDeltaTheFirstOneFirst) {
    const double marks[] = {0.0, 0.0625, 1.0};
    const std::pair<double, double> values[] = {{0.04, 0.0},    {-0.04, 0.0}, {0.05, 0.0625},
                                                {-0.05, -0.05}, {0.9, 0.9},   {1.04, 1.0},
                                                {0.11, 0.0625}};
    for (const auto& [given, captured] : values)
        EXPECT_EQ(magneticValue(given, marks, 0.05), captured) << given;
    EXPECT_EQ(magneticValue(1.0625, marks, 0.0625), 1.0625) << "exactly delta away";
    EXPECT_EQ(magneticValue(0.9375, marks, 0.0625), 0.9375);
    for (const double delta : {0.0, -1.0, static_cast<double>(NAN)})
        EXPECT_EQ(magneticValue(1.0, marks, delta), 1.0);
    EXPECT_TRUE(std::isnan(magneticValue(NAN, marks, 0.05)));
    EXPECT_EQ(magneticStep(0.93, 0.96, marks, 0.05), 1.0);
    EXPECT_EQ(magneticStep(1.0, 1.01, marks, 0.05), 1.01);  // it gets away
    EXPECT_EQ(magneticStep(0.5, 0.6, marks, 0.05), 0.6);
}

TEST(WheelsOfSliders, PartsAddUpUntilTheWheelTurnsBack) {
    WheelNotches wheel;
    const std::pair<double, int> turns[] = {{0.6, 0},   {0.6, 1},    {0.75, 0}, {-0.5, 0},
                                            {-0.5, -1}, {3.5, 3},    {0.5, 1},  {NAN, 0},
                                            {0.25, 0},  {1e9, 1000}, {-2.0, -2}};
    for (const auto& [part, whole] : turns)
        EXPECT_EQ(wheel.add(part), whole) << part;
    wheel.add(0.9);
    wheel.reset();
    EXPECT_EQ(wheel.add(0.9), 0);
}

}  // namespace
}  // namespace veltra
