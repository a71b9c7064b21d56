// SPDX-License-Identifier: MIT
#include "veltra/controls/sliders/log_slider_cell.h"

#include "veltra/ui/keyed_coder.h"
#include "veltra/ui/slider.h"
#include "veltra/ui/testing/scripted_port.h"

namespace veltra::testing {
namespace {

void setUp(QkLogSliderCell& cell, std::int32_t mode, std::int32_t count = 5) {
    cell.setMaxValue(100.0);
    cell.setNumberOfTickMarks(count);
    cell.setAllowsTickMarkValuesOnly(true);
    cell.setLogTickMarks(mode);
}

TEST(LogSliders, CountStopsAndKeepToThem) {
    struct Case {
        std::int32_t mode;
        bool isInverted;
        double set, raw, linear;
    };
    const Case cases[] = {
        {1, false, 50, 19.375, 50},    {1, false, 1000, 100, 100},      {1, false, -7, 0, 0},
        {1, true, 75, 7.7734375, 75},  {1, true, 100, 0, 100},          {2, false, 50, 80.625, 50},
        {2, true, 25, 92.2265625, 25}, {0, false, 50, 50, 50},          {-9, false, 50, 19.375, 50},
        {1, false, NAN, 0, 0},         {1, false, 12.5, 7.7734375, 25}, {1, true, NAN, 100, 0},
    };
    for (const Case& row : cases) {
        QkLogSliderCell cell;
        setUp(cell, row.mode);
        cell.setInvertValues(row.isInverted);
        cell.setLogSliderValue(row.set);
        EXPECT_DOUBLE_EQ(cell.doubleValue(), row.raw) << row.mode << ' ' << row.set;
        EXPECT_EQ(cell.logSliderValue(), row.linear) << row.mode << ' ' << row.set;
        EXPECT_EQ(cell.logSliderIntValue(), static_cast<std::int32_t>(row.linear));
        for (std::int32_t i = 0; i < 5; ++i)
            EXPECT_EQ(cell.closestIndexOfValue(cell.tickMarkValueAtIndex(i)), i);
    }
    QkLogSliderCell cell;
    setUp(cell, 1);
    cell.setLogTickMarks(0);
    EXPECT_EQ(cell.closestIndexOfValue(37.5), 1) << "the lower of two";
    cell.setLogTickMarks(1);
    cell.setDoubleValue(44.0);
    cell.setLogTickMarks(2);  // to a mark of the new curve
    EXPECT_DOUBLE_EQ(cell.doubleValue(), 55.3515625);
    cell.setMinValue(-3.0);
    cell.setMaxValue(2.0);
    cell.setNumberOfTickMarks(3);
    cell.setLogSliderIntValue(0);
    EXPECT_EQ(cell.logSliderValue(), -0.5);
    EXPECT_EQ(cell.logSliderIntValue(), -1) << "halves go away from zero";
}

TEST(LogSliders, CountFromTheOtherEndWithoutStops) {
    for (const std::int32_t count : {0, 1}) {  // too few stops to count
        QkLogSliderCell cell;
        setUp(cell, 1, count);
        cell.setInvertValues(true);
        cell.setLogSliderValue(30.0);
        EXPECT_EQ(cell.logSliderValue(), count == 0 ? 30.0 : 0.0);
        EXPECT_EQ(cell.closestIndexOfValue(30.0), 0);
    }
    QkLogSliderCell cell;
    cell.setMinValue(-10.0);
    cell.setMaxValue(90.0);
    cell.setInvertValues(true);
    cell.setSliderValue(80.5);
    EXPECT_EQ(cell.doubleValue(), -0.5);
    EXPECT_EQ(cell.logSliderValue(), 80.5);
    EXPECT_EQ(cell.sliderIntValue(), 80);
    cell.setSliderIntValue(80);  // is that already
    EXPECT_EQ(cell.sliderValue(), 80.5);
    cell.setSliderIntValue(81);
    EXPECT_EQ(cell.sliderValue(), 81.0);
    cell.setLogSliderIntValue(500);
    EXPECT_EQ(cell.doubleValue(), -10.0);
    cell.setInvertValues(false);
    cell.setSliderValue(-0.75);
    EXPECT_EQ(cell.sliderIntValue(), 0) << "toward zero";
    cell.setMaxValue(1e300);
    cell.setSliderValue(1e300);
    EXPECT_EQ(cell.sliderIntValue(), INT32_MAX);
}

TEST(LogSliders, StepFromStopToStopAndStayWhatTheyAreInAnArchive) {
    const ScriptedPort port;
    Shown<Slider> host(Rect{{}, {114, 20}}, std::make_unique<QkLogSliderCell>());
    auto& cell = static_cast<QkLogSliderCell&>(host.view.sliderCell());
    setUp(cell, 1);
    cell.setInvertValues(true);
    host.window.makeFirstResponder(&host.view);
    for (const double value : {75.0, 50.0, 25.0, 0.0, 0.0}) {  // the knob goes up
        host.key(kUpArrowCharacter);
        EXPECT_EQ(cell.logSliderValue(), value);
    }
    host.wheel({5, 5}, -2.0F);
    EXPECT_EQ(cell.logSliderValue(), 50.0);
    EXPECT_TRUE(cell.performAccessibilityAction(AccessibilityAction::Increment));
    EXPECT_EQ(cell.accessibilityNumber()->value, 75.0);
    EXPECT_EQ(cell.accessibilityNumber()->step, 25.0);
    KeyedCoder coder;
    cell.encodeWithCoder(coder);
    QkLogSliderCell read;
    read.decodeWithCoder(KeyedCoder(coder.archive()));
    EXPECT_EQ(read.logTickMarks(), 1);
    EXPECT_EQ(read.logSliderValue(), 75.0);
    EXPECT_TRUE(read.setAccessibilityNumber(20.0));
    EXPECT_EQ(read.logSliderValue(), 25.0);
    read.setEnabled(false);
    EXPECT_FALSE(read.setAccessibilityNumber(50.0));
    EXPECT_FALSE(read.performAccessibilityAction(AccessibilityAction::Decrement));
}

}  // namespace
}  // namespace veltra::testing
