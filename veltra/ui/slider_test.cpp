// SPDX-License-Identifier: MIT
#include "veltra/ui/slider.h"

#include "veltra/ui/keyed_coder.h"
#include "veltra/ui/testing/scripted_port.h"

namespace veltra::testing {
namespace {

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
    slider.replaceCell(std::make_unique<SliderCell>());
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
