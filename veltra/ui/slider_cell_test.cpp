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

TEST(SliderCellValues, KeepToLimitsAndTicksAndTheKnobToThePointer) {
    const ScriptedPort port;
    auto cell = std::make_unique<SliderCell>();
    SliderCell& slider = *cell;
    slider.setMaxValue(100.0);
    slider.setNumberOfTickMarks(5);
    slider.setAllowsTickMarkValuesOnly(true);
    const std::pair<double, double> values[] = {
        {-5.0, 0.0}, {12.5, 0.0}, {13.0, 25.0}, {99.0, 100.0}, {NAN, 0.0}};
    for (const auto& [given, kept] : values) {
        slider.setDoubleValue(given);
        EXPECT_EQ(slider.doubleValue(), kept) << given;
    }
    slider.setAllowsTickMarkValuesOnly(false);
    HostedView host(std::make_unique<Control>(Rect{{}, {114, 20}}, std::move(cell)));
    host.display();
    host.press({10, 10});  // on the knob, right of its middle: it does not jump
    EXPECT_EQ(slider.doubleValue(), 0.0);
    host.drag({60, 10});
    EXPECT_EQ(slider.doubleValue(), 50.0);
    host.release({500, 10});
    EXPECT_EQ(slider.doubleValue(), 50.0);
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
    HostedView host(std::make_unique<Slider>(Rect{{}, {114, 20}}, std::make_unique<Magnetic>()));
    auto& slider = static_cast<Slider&>(*host.window.contentView());
    Receiver target;
    slider.setTarget(&target);
    slider.setAction(action<&Receiver::act>());
    slider.sliderCell().setMaxValue(100.0);
    host.window.makeFirstResponder(&slider);
    const std::pair<char16_t, double> keys[] = {
        {kUpArrowCharacter, 10.0}, {kRightArrowCharacter, 20.0}, {kDownArrowCharacter, 10.0},
        {kPageUpCharacter, 100.0}, {kLeftArrowCharacter, 90.0},  {kPageDownCharacter, 0.0},
        {kEndCharacter, 100.0},    {kHomeCharacter, 0.0}};
    int count = 0;
    for (const auto& [key, value] : keys) {
        host.key(key);
        EXPECT_EQ(slider.doubleValue(), value) << static_cast<int>(key);
        EXPECT_EQ(target.count, ++count);
    }
    host.key(kHomeCharacter);  // no change: nothing is sent
    host.wheel({5, 5}, 3.0F);
    EXPECT_TRUE(slider.doubleValue() == 3.0 && target.count == count + 1);
    slider.sliderCell().setNumberOfTickMarks(11);
    slider.sliderCell().setAllowsTickMarkValuesOnly(true);
    host.wheel({5, 5}, 0.6F);  // parts of a notch add up
    EXPECT_EQ(slider.doubleValue(), 0.0);
    host.wheel({5, 5}, 0.6F);
    EXPECT_EQ(slider.doubleValue(), 10.0);
    slider.sliderCell().setAltIncrementValue(30.0);  // three marks
    host.key(kUpArrowCharacter);
    EXPECT_EQ(slider.doubleValue(), 40.0);
    slider.sliderCell().setAltIncrementValue(1.0);  // at least one
    host.key(kUpArrowCharacter);
    EXPECT_EQ(slider.doubleValue(), 50.0);
    slider.setEnabled(false);
    host.wheel({5, 5}, 3.0F);
    EXPECT_EQ(slider.doubleValue(), 50.0);
}

// Ranges that no double could hold the length of, steps that are no numbers, an archive's marks.
TEST(Sliders, StayInTheirRangeWhateverTheirSettings) {
    constexpr double kInf = std::numeric_limits<double>::infinity();
    const ScriptedPort port;
    HostedView host(std::make_unique<Slider>(Rect{{}, {114, 20}}));
    auto& slider = static_cast<Slider&>(*host.window.contentView());
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

TEST(Sliders, LeaveAGestureThatBeganElsewhereToWhatIsAround) {
    struct List final : View {
        using View::View;
        void scrollWheel(const Event& event) override { scrolled += event.deltaY; }
        float scrolled = 0.0F;
    };
    const ScriptedPort port;
    HostedView host(std::make_unique<List>(Rect{{}, {114, 60}}));
    auto& list = static_cast<List&>(*host.window.contentView());
    auto& slider = list.addSubview(std::make_unique<Slider>(Rect{{}, {114, 20}}));
    slider.sliderCell().setMaxValue(100.0);
    const auto turn = [&](float y, ScrollPhase phase) {
        Event event = host.eventAt(EventType::ScrollWheel, {5, y});
        event.deltaY = 1.0F;
        event.scrollPhase = phase;
        Application::current().postEvent(event);
    };
    turn(50, ScrollPhase::Began);
    turn(5, ScrollPhase::Changed);  // the slider has come under the pointer
    turn(5, ScrollPhase::Momentum);
    EXPECT_EQ(list.scrolled, 3.0F);
    EXPECT_EQ(slider.doubleValue(), 0.0);
    turn(5, ScrollPhase::Began);
    turn(5, ScrollPhase::Changed);
    turn(5, ScrollPhase::None);
    EXPECT_EQ(list.scrolled, 3.0F);
    EXPECT_EQ(slider.doubleValue(), 3.0);
    slider.setEnabled(false);
    turn(5, ScrollPhase::Changed);
    turn(5, ScrollPhase::None);
    EXPECT_EQ(list.scrolled, 5.0F);
}

TEST(Sliders, KeepTheirPropertiesInAnArchiveAndInAnotherCell) {
    const ScriptedPort port;
    Slider slider({{}, {114, 20}});
    SliderCell& cell = slider.sliderCell();
    cell.setMinValue(-20.0);
    cell.setMaxValue(120.0);
    cell.setNumberOfTickMarks(15);
    cell.setAllowsTickMarkValuesOnly(true);
    cell.setVertical(true);
    cell.setTag(7);
    cell.setDoubleValue(70.0);
    slider.setTag(3);
    slider.setFont(Font::systemFont(9.5F, FontWeight::Bold));
    slider.setAlignment(TextAlignment::Right);
    slider.setControlSize(ControlSize::Mini);
    slider.setEnabled(false);
    Receiver target;
    slider.setTarget(&target);
    KeyedCoder coder;
    slider.encodeWithCoder(coder);
    Slider read({{}, {114, 20}});
    read.decodeWithCoder(KeyedCoder(coder.archive()));
    EXPECT_EQ(read.tag(), 3);
    EXPECT_EQ(read.controlSize(), ControlSize::Mini);
    slider.replaceCell(std::make_unique<Magnetic>());
    for (const Slider* kept : {&read, &slider}) {
        EXPECT_EQ(kept->doubleValue(), 70.0);
        EXPECT_EQ(kept->sliderCell().minValue(), -20.0);
        EXPECT_EQ(kept->sliderCell().numberOfTickMarks(), 15);
        EXPECT_EQ(kept->sliderCell().explicitlyVertical(), true);
        EXPECT_EQ(kept->sliderCell().tag(), 7);
        EXPECT_EQ(kept->font(), Font::systemFont(9.5F, FontWeight::Bold));
        EXPECT_EQ(kept->alignment(), TextAlignment::Right);
        EXPECT_FALSE(kept->isEnabled());
    }
    EXPECT_EQ(slider.target(), &target);
    slider.sliderCell().setVertical(std::nullopt);
    // Where the middle of the knob stands.
    EXPECT_EQ(slider.sliderCell().rectOfTickMarkAtIndex(0, false).minX(), 7.0F);
    EXPECT_EQ(slider.sliderCell().rectOfTickMarkAtIndex(14, false).minX(), 107.0F);
    EXPECT_TRUE(slider.sliderCell().rectOfTickMarkAtIndex(15, false).isEmpty());
}

}  // namespace
}  // namespace veltra::testing
