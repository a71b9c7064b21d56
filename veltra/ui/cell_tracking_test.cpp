// SPDX-License-Identifier: MIT
#include "veltra/ui/cell_tracking.h"

#include "veltra/ui/testing/scripted_port.h"

namespace veltra::testing {
namespace {

struct Traced final : Cell {
    bool stopsEarly = false;
    std::string log;
    bool startTracking(Point, View&) override { return note('s'); }
    bool continueTracking(Point, Point, View&) override { return note('d'); }
    void stopTracking(Point, Point, View&, bool isUp) override { note(isUp ? 'u' : 'x'); }
    void scrollWheel(const Event&) override { note('w'); }
    bool stopsTrackingAtFirstDrag() const override { return stopsEarly; }
    bool note(char what) {
        log += what;
        return true;
    }
};

// d0 and d1 are drags inside and outside of the frame, u0 and u1 releases, o a drag of another
// press, w the wheel, c a lost pointer.
TEST(Tracking, EndsAsItsPolicySays) {
    const struct {
        bool untilMouseUp, stopsEarly;
        const char *events, *log;
        bool succeeds;
    } rows[] = {
        {true, false, "d0 d1 w u1", "sddwu", true}, {true, true, "d0 d0 u0", "sddu", true},
        {false, false, "d0 d0 u0", "sddu", true},   {false, false, "d0 d1 u0", "sddx", false},
        {false, true, "d0 d0 u0", "sdx", false},    {false, true, "w u0", "swu", true},
        {true, false, "o d0 o u0", "sdu", true},    {true, false, "d0 c u0", "sdx", false}};
    const ScriptedPort port;
    Shown<View> host(Rect{{}, {100, 50}});
    for (const auto& row : rows) {
        Traced cell;
        cell.stopsEarly = row.stopsEarly;
        CellTracking tracking;
        Event event;
        event.locationInWindow = {5, 5};
        event.eventNumber = 7;
        event.clickCount = 1;
        View& view = host.view;
        ASSERT_TRUE(tracking.press(cell, view, {{0, 0}, {10, 10}}, row.untilMouseUp, event));
        for (const char* step = row.events; *step != '\0'; ++step) {
            Event next = event;
            if (*step == ' ' || *step == '0' || *step == '1') continue;
            if (step[1] == '1') next.locationInWindow = {50, 5};
            if (*step == 'o') next.eventNumber = 6;
            if (*step == 'c') next.clickCount = 0;
            next.type = *step == 'd' || *step == 'o' ? EventType::LeftMouseDragged
                        : *step == 'w'               ? EventType::ScrollWheel
                                                     : EventType::LeftMouseUp;
            tracking.handle(next);
        }
        EXPECT_EQ(cell.log, row.log) << row.events;
        EXPECT_EQ(tracking.hasSucceeded(), row.succeeds) << row.events;
        EXPECT_EQ(tracking.cell(), nullptr);
    }
    Traced disabled;
    disabled.setEnabled(false);
    EXPECT_FALSE(CellTracking().press(disabled, host.view, {}, true, Event()));
}

}  // namespace
}  // namespace veltra::testing
