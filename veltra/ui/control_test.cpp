// SPDX-License-Identifier: MIT
#include "veltra/ui/control.h"

#include "veltra/ui/action_cell.h"
#include "veltra/ui/keyed_coder.h"
#include "veltra/ui/testing/scripted_port.h"

namespace veltra::testing {
namespace {

struct Willing final : ActionCell {
    bool startTracking(Point, View&) override { return true; }
    bool prefersTrackingUntilMouseUp() const override { return true; }
};

TEST(ControlActions, OneClickSendsOneActionWhereverTargetAndActionWereSet) {
    const ScriptedPort port;
    for (const bool isSetOnCell : {false, true}) {
        for (const bool isCellLate : {false, true}) {
            auto made = std::make_unique<Control>(Rect{{}, {20, 20}});
            Control& control = *made;
            Receiver target;
            if (!isCellLate) control.setCell(std::make_unique<Willing>());
            if (!isSetOnCell || isCellLate) {
                control.setTarget(&target);
                control.setAction(action<&Receiver::act>());
            } else {
                static_cast<Willing*>(control.cell())->setTarget(&target);
                static_cast<Willing*>(control.cell())->setAction(action<&Receiver::act>());
            }
            if (isCellLate) control.setCell(std::make_unique<Willing>());
            HostedView host(std::move(made));
            host.click({5, 5});
            EXPECT_EQ(target.count, 1);
            EXPECT_EQ(control.target(), &target);
            EXPECT_EQ(static_cast<Willing*>(control.cell())->action(), control.action());
            control.cell()->sendAction();
            control.sendAction();
            EXPECT_EQ(target.count, 3);
        }
    }
}

// Cancelling a drag may send an action, and what the cell posts may be heard by the host.
TEST(ControlActions, MayDeleteTheControlThatEndsADrag) {
    struct Ending final : ActionCell {
        std::function<void()> tell = [] {};
        bool startTracking(Point, View&) override { return true; }
        void stopTracking(Point, Point, View&, bool) override {
            std::exchange(tell, [] {})();
        }
        void setEnabled(bool isEnabled) override {
            if (!isEnabled) std::exchange(tell, [] {})();
        }
    };
    const ScriptedPort port;
    Shown<View> host(Rect{{}, {20, 20}});
    const std::function<void(Control&)> ends[] = {
        [](Control& control) { control.setEnabled(false); },
        [](Control& control) { control.setCell(nullptr); },
        [&](Control& control) {
            control.mouseDown(host.eventAt(EventType::LeftMouseDown, {5, 5}));
        },
        [](Control& control) { control.setEnabled(false); },  // no drag
        [](Control& control) {
            KeyedCoder coder;
            coder.encodeBool(false, "CONTROL_ENABLED");
            control.decodeWithCoder(coder);
        }};
    for (const auto& end : ends) {
        auto made = std::make_unique<Ending>();
        Ending& cell = *made;
        auto& control =
            host.view.addSubview(std::make_unique<Control>(Rect{{}, {20, 20}}, std::move(made)));
        const WeakPointer<View> alive(&control);
        host.press({5, 5});
        if (&end == &ends[3]) host.release({5, 5});
        cell.tell = [&] { control.takeFromSuperview().reset(); };
        end(control);
        EXPECT_FALSE(alive) << &end - ends;
    }
}

TEST(ControlActions, WithoutACellLeaveAllToWhatIsAround) {
    struct Around final : View {
        using View::View;
        std::string told;
        void mouseDown(const Event&) override { told += 'd'; }
        void mouseDragged(const Event&) override { told += '>'; }
        void mouseUp(const Event&) override { told += 'u'; }
        void scrollWheel(const Event&) override { told += 'w'; }
    };
    const ScriptedPort port;
    Shown<Around> host(Rect{{}, {20, 20}});
    auto& control = host.view.addSubview(std::make_unique<Control>(Rect{{}, {20, 20}}));
    control.setStringValue("5");
    EXPECT_EQ(control.stringValue(), "");
    EXPECT_FALSE(control.wantsKey(host.keyEvent(u' ')));
    host.press({5, 5});
    host.drag({6, 5});
    host.release({6, 5});
    host.wheel({5, 5}, 1.0F);
    EXPECT_EQ(host.view.told, "d>uw");
    EXPECT_TRUE(host.display().empty());
}

}  // namespace
}  // namespace veltra::testing
