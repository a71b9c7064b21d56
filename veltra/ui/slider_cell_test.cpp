// SPDX-License-Identifier: MIT
#include "veltra/ui/slider_cell.h"

#include "veltra/ui/keyed_coder.h"
#include "veltra/ui/slider.h"
#include "veltra/ui/testing/scripted_port.h"

namespace veltra::testing {
namespace {

// A mark that pulls the value over, as an override may do.
struct Magnetic final : SliderCell {
    void setDoubleValue(double value) override {
        SliderCell::setDoubleValue(std::abs(value - 50.0) < 5.0 ? 50.0 : value);
    }
    void drawKnob(Canvas&, const Rect& knob, View&) override { drawn = knob; }
    Rect drawn;
};

TEST(SliderCellValues, KeepToLimitsAndTicks) {
    SliderCell slider;
    EXPECT_EQ(slider.stringValue(), "0");
    slider.setMaxValue(100.0);
    slider.setNumberOfTickMarks(5);
    slider.setAllowsTickMarkValuesOnly(true);
    const std::pair<double, double> values[] = {
        {-5.0, 0.0}, {12.5, 0.0}, {13.0, 25.0}, {99.0, 100.0}, {NAN, 0.0}};
    for (const auto& [given, kept] : values) {
        slider.setDoubleValue(given);
        EXPECT_EQ(slider.doubleValue(), kept) << given;
    }
}

TEST(SliderCellValues, FollowThePointerInEveryDirectionAndStandAtTheirMarks) {
    const ScriptedPort port;
    for (const bool isVertical : {false, true}) {
        for (const bool isFlipped : {false, true}) {
            const Rect frame{{}, isVertical ? Size{20, 114} : Size{114, 20}};
            HostedView host(isFlipped ? std::make_unique<Flipped<Slider>>(frame)
                                      : std::make_unique<Slider>(frame));
            SliderCell& cell = static_cast<Slider&>(*host.window.contentView()).sliderCell();
            cell.setMaxValue(100.0);
            cell.setNumberOfTickMarks(5);
            // Points of the window, whose y axis points up: flipped or not, up is more.
            const auto at = [&](float way) { return isVertical ? Point{10, way} : Point{way, 10}; };
            host.press(at(10));  // on the knob, beyond its middle: it does not jump
            EXPECT_EQ(cell.doubleValue(), 0.0);
            host.drag(at(85));
            EXPECT_EQ(cell.doubleValue(), 75.0);
            host.release(at(500));
            EXPECT_EQ(cell.doubleValue(), 75.0);
            const Point knob = cell.knobRectFlipped(isFlipped).center();
            const Point mark = cell.rectOfTickMarkAtIndex(3, isFlipped).origin;
            EXPECT_EQ(isVertical ? knob.y : knob.x, isVertical ? mark.y : mark.x);
            EXPECT_EQ(isVertical ? knob.x : knob.y, 10.0F);
        }
    }
}

TEST(SliderCellValues, ChangesOfTheRangeDoNotCountAsNewValues) {
    Magnetic cell;
    cell.setMaxValue(100.0);
    cell.setDoubleValue(47.0);
    EXPECT_EQ(cell.doubleValue(), 50.0);
    cell.SliderCell::setDoubleValue(47.0);
    cell.setMaxValue(90.0);
    cell.setMinValue(std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(cell.doubleValue(), 47.0);
    EXPECT_EQ(cell.minValue(), 0.0);
}

TEST(Sliders, FollowTheWheelAndTheKeyboard) {
    const ScriptedPort port;
    Shown<Slider> host(Rect{{}, {114, 20}}, std::make_unique<Magnetic>());
    Receiver target;
    host.view.setTarget(&target);
    host.view.setAction(action<&Receiver::act>());
    host.view.sliderCell().setMaxValue(100.0);
    host.window.makeFirstResponder(&host.view);
    const std::pair<char16_t, double> keys[] = {
        {kUpArrowCharacter, 10.0}, {kRightArrowCharacter, 20.0}, {kDownArrowCharacter, 10.0},
        {kPageUpCharacter, 100.0}, {kLeftArrowCharacter, 90.0},  {kPageDownCharacter, 0.0},
        {kEndCharacter, 100.0},    {kHomeCharacter, 0.0}};
    int count = 0;
    for (const auto& [key, value] : keys) {
        host.key(key);
        EXPECT_EQ(host.view.doubleValue(), value) << static_cast<int>(key);
        EXPECT_EQ(target.count, ++count);
    }
    host.key(kHomeCharacter);  // no change: nothing is sent
    host.wheel({5, 5}, 3.0F);
    EXPECT_TRUE(host.view.doubleValue() == 3.0 && target.count == count + 1);
    host.view.sliderCell().setNumberOfTickMarks(11);
    host.view.sliderCell().setAllowsTickMarkValuesOnly(true);
    host.wheel({5, 5}, 0.6F);  // parts of a notch add up
    EXPECT_EQ(host.view.doubleValue(), 0.0);
    host.wheel({5, 5}, 0.6F);
    EXPECT_EQ(host.view.doubleValue(), 10.0);
    host.view.sliderCell().setAltIncrementValue(30.0);  // three marks
    host.key(kUpArrowCharacter);
    EXPECT_EQ(host.view.doubleValue(), 40.0);
    host.view.sliderCell().setAltIncrementValue(1.0);  // at least one
    host.key(kUpArrowCharacter);
    EXPECT_EQ(host.view.doubleValue(), 50.0);
    host.view.setEnabled(false);
    host.wheel({5, 5}, 3.0F);
    EXPECT_FALSE(host.view.sliderCell().performKey(host.keyEvent(kUpArrowCharacter)));
    EXPECT_EQ(host.view.doubleValue(), 50.0);
}

// Ranges that no double could hold the length of, steps that are no numbers, an archive's marks.
TEST(Sliders, StayInTheirRangeWhateverTheirSettings) {
    constexpr double kInf = std::numeric_limits<double>::infinity();
    const ScriptedPort port;
    Shown<Slider> host(Rect{{}, {114, 20}});
    Slider& slider = host.view;
    SliderCell& cell = slider.sliderCell();
    host.window.makeFirstResponder(&slider);
    for (const auto& [least, most] :
         {std::pair{-kInf, kInf}, {0.0, kInf}, {3.0, 3.0}, {-kInf, -1.0}}) {
        for (const std::int32_t marks : {0, 3, INT32_MAX}) {
            cell.setMinValue(-kInf);
            cell.setMaxValue(most);
            cell.setMinValue(least);
            cell.setAllowsTickMarkValuesOnly(false);
            cell.setNumberOfTickMarks(marks);
            cell.setAllowsTickMarkValuesOnly(true);
            EXPECT_EQ(cell.numberOfTickMarks(), std::min(marks, SliderCell::kMaximumTickMarks));
            for (const double step : {std::nan(""), kInf, 1e-300}) {
                cell.setAltIncrementValue(step);
                host.key(kHomeCharacter);
                EXPECT_EQ(slider.doubleValue(), cell.minValue());
                host.key(kUpArrowCharacter);
                EXPECT_TRUE(std::isfinite(slider.doubleValue()));
                host.key(kEndCharacter);
                EXPECT_EQ(slider.doubleValue(), cell.maxValue());
            }
            for (const float notches : {NAN, INFINITY, -3.0F})
                host.wheel({5, 5}, notches);
            EXPECT_EQ(slider.doubleValue() < cell.maxValue(), cell.minValue() < cell.maxValue());
            EXPECT_FALSE(std::isnan(cell.knobRectFlipped(false).minX()));
        }
    }
    KeyedCoder coder;
    coder.encodeInt64(std::int64_t{1} << 31, "SLIDER_TICK_MARKS");
    coder.encodeBool(true, "SLIDER_TICK_MARKS_ONLY");
    SliderCell read;
    read.decodeWithCoder(coder);
    EXPECT_EQ(read.numberOfTickMarks(), SliderCell::kMaximumTickMarks);
}

}  // namespace
}  // namespace veltra::testing
