// SPDX-License-Identifier: MIT
#include "veltra/ui/value_tip.h"

#include "veltra/ui/testing/scripted_port.h"

namespace veltra::testing {
namespace {

// The scripted port's letters are 6 points wide at this size: "-3.0 dB" takes 42 + 16 points.
TEST(ValueTips, StayInTheRoomAndClearOfTheKnobThatTheirArrowPointsTo) {
    const ScriptedPort port;
    const Rect room{{0, 0}, {200, 100}};
    struct Case {
        Rect knob;
        ToolTipSide side;
        Point corner;  // of the plate
        Point tip;     // of the arrow
    };
    using enum ToolTipSide;
    const Case cases[] = {
        {{{50, 40}, {24, 37}}, Beside, {82, 47}, {77, 58.5F}},  // at the right
        {{{150, 40}, {24, 36}}, Beside, {84, 46}, {147, 58}},   // at the left for lack of room
        {{{50, 0}, {24, 12}}, Beside, {82, 0}, {77, 11}},       // as high as it can be
        {{{94, 60}, {13, 20}}, Above, {72, 28}, {100.5F, 57}},  // above
        {{{94, 10}, {12, 20}}, Above, {71, 38}, {100, 33}},     // below
        {{{0, 60}, {12, 20}}, Above, {0, 28}, {11, 57}},        // not beyond the side
    };
    for (const Case& row : cases) {
        const ValueTip tip = ValueTip::placed("-3.0 dB", row.knob, room, row.side);
        EXPECT_EQ(tip.plate.origin, row.corner);
        EXPECT_EQ(tip.plate.size, (Size{58, 24}));
        EXPECT_EQ(tip.arrow[1], row.tip);
        EXPECT_FALSE(tip.plate.intersects(row.knob));
        RecordingCanvas surface;
        Canvas canvas(surface);
        tip.movedBy({3, 4}).draw(canvas, "-3.0 dB", Appearance::Dark);
        for (const auto& call : surface.calls)
            EXPECT_EQ(tip.reach.movedBy({3, 4}).united(call.rect), tip.reach.movedBy({3, 4}));
    }
}

}  // namespace
}  // namespace veltra::testing
