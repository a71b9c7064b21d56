// SPDX-License-Identifier: MIT
#include "veltra/base/testing/counted_new.h"
#include "veltra/controls/sliders/slider_presets.h"
#include "veltra/ui/testing/scripted_port.h"

namespace veltra::testing {
namespace {

// From the event that arrives at the control to the request to draw it again.
TEST(SliderMemory, AStepOfADragAllocatesNothing) {
    Shown<Slider> host(Rect{{}, {64, 240}});
    QkSliderCell& cell = QkSliderCell::replacedCellInSlider(host.view);
    setUpFader(cell);
    cell.setMovableToolTip(nullptr, 0);  // whose text is a string
    Receiver target;
    host.view.setTarget(&target);
    host.view.setAction(action<&Receiver::act>());
    host.port.invalid.reserve(1000);
    host.press({40, 200});
    Event event = host.eventAt(EventType::LeftMouseDragged, {});
    event.eventNumber = 1;
    const std::size_t asked = host.port.invalid.size();
    allocated = 0;
    for (int i = 0; i < 100; ++i) {
        event.locationInWindow = {40.0F, 20.0F + static_cast<float>(i)};
        host.view.mouseDragged(event);
    }
    EXPECT_EQ(allocated, 0);
    EXPECT_EQ(target.count, 101);
    EXPECT_GE(host.port.invalid.size(), asked + 90);
    std::string counted(100, 'x');
    EXPECT_EQ(allocated, 1) << "counting works";
    host.release({40, 100});
}

}  // namespace
}  // namespace veltra::testing
