// SPDX-License-Identifier: MIT
#include "veltra/ui/slider.h"

#include "veltra/ui/testing/archive_laws.h"
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
    Shown<List> host(Rect{{}, {114, 60}});
    auto& slider = host.view.addSubview(std::make_unique<Slider>(Rect{{}, {114, 20}}));
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
    EXPECT_EQ(host.view.scrolled, 3.0F);
    EXPECT_EQ(slider.doubleValue(), 0.0);
    turn(5, ScrollPhase::Began);
    turn(5, ScrollPhase::Changed);
    turn(5, ScrollPhase::None);
    EXPECT_EQ(host.view.scrolled, 3.0F);
    EXPECT_EQ(slider.doubleValue(), 3.0);
    slider.setEnabled(false);
    turn(5, ScrollPhase::Changed);
    turn(5, ScrollPhase::None);
    EXPECT_EQ(host.view.scrolled, 5.0F);
}

TEST(Sliders, KeepTheirPropertiesInAnArchiveAndInAnotherCell) {
    const ScriptedPort port;
    Slider slider({{}, {114, 20}});
    SliderCell& cell = slider.sliderCell();
    cell.setMinValue(-20.0);
    cell.setMaxValue(120.0);
    cell.setNumberOfTickMarks(15);
    cell.setAllowsTickMarkValuesOnly(true);
    cell.setAltIncrementValue(10.0);
    cell.setVertical(true);
    cell.setTag(7);
    cell.setDoubleValue(70.0);
    cell.setEditable(true);
    cell.setBordered(true);
    cell.setBezeled(true);
    slider.setTag(3);
    slider.setFont(Font::systemFont(9.5F, FontWeight::Bold));
    slider.setAlignment(TextAlignment::Right);
    slider.setControlSize(ControlSize::Mini);
    slider.setEnabled(false);
    Receiver target;
    slider.setTarget(&target);
    cell.sendActionOn(EventType::LeftMouseUp);
    SliderCell freshCell;
    EXPECT_EQ(archiveFaults(cell, freshCell, "", 15), "");
    Slider fresh({{}, {114, 20}});
    EXPECT_EQ(archiveFaults(slider, fresh, "", 6), "");
    const PropertyValue kept = archiveOf(slider);
    auto other = std::make_unique<SliderCell>();
    const SliderCell* const given = other.get();
    slider.replaceCell(std::move(other));
    slider.replaceCell(nullptr);
    EXPECT_EQ(&slider.sliderCell(), given);
    EXPECT_EQ(given->sendActionMask(), EventMask(EventType::LeftMouseUp));
    EXPECT_EQ(archiveOf(slider), kept);
    EXPECT_EQ(slider.target(), &target);
    slider.sliderCell().setVertical(std::nullopt);
    EXPECT_EQ(slider.sliderCell().rectOfTickMarkAtIndex(14, false).minX(), 107.0F);
    EXPECT_TRUE(slider.sliderCell().rectOfTickMarkAtIndex(15, false).isEmpty());
}

}  // namespace
}  // namespace veltra::testing
