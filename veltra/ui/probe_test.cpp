// SPDX-License-Identifier: MIT
// One cell that needs everything the base offers: what carries it carries the controls.
#include "veltra/platform/testing/manual_run_loop.h"
#include "veltra/ui/action_cell.h"
#include "veltra/ui/control.h"
#include "veltra/ui/testing/scripted_port.h"

namespace veltra::testing {
namespace {

// A value that follows the pointer upwards, the wheel and the arrow keys.
struct ProbeCell final : ActionCell, ToolTipSource {
    ProbeCell() { setIntValue(0); }

    std::vector<std::string> log;
    std::function<void(std::string_view where)> hook = [](std::string_view) {};

    bool startTracking(Point point, View& view) override {
        ToolTipWindow::shared().showToolTipWindowForView(view, this, 0, point);
        return note("start", point);
    }
    bool continueTracking(Point last, Point current, View& view) override {
        const WeakPointer<ProbeCell> self(this);
        change(static_cast<std::int32_t>(current.y - last.y), "value");
        if (!self) return true;
        ToolTipWindow::shared().updateToolTipPosition(current, view);
        return note("drag", current);
    }
    void stopTracking(Point, Point stop, View&, bool mouseIsUp) override {
        ToolTipWindow::shared().closeToolTipWindow();
        note(mouseIsUp ? "up" : "stop", stop);
    }
    void scrollWheel(const Event& event) override { change(event.deltaY > 0.0F ? 1 : -1, "wheel"); }
    std::string stringForTag(std::int32_t) override { return stringValue(); }
    // The hook may delete the cell.
    void change(std::int32_t by, const char* where) {
        const WeakPointer<ProbeCell> self(this);
        setIntValue(intValue() + by);
        sendAction();
        if (self) hook(where);
    }
    bool note(const char* what, Point point) {
        log.push_back(std::string(what) + " " + std::to_string(static_cast<int>(point.x)) + "," +
                      std::to_string(static_cast<int>(point.y)));
        hook(what);
        return true;
    }
};

struct Probe final : Control {
    explicit Probe(bool isPulling)
        : Control({{50, 20}, {40, 60}}, std::make_unique<ProbeCell>()), pulls(isPulling) {}
    const bool pulls;

    ProbeCell& probe() { return static_cast<ProbeCell&>(*cell()); }
    bool acceptsFirstResponder() const override { return true; }
    void mouseDown(const Event& event) override {
        if (!pulls) return Control::mouseDown(event);
        probe().trackMouse(event, bounds(), *this, true);
    }
    void keyDown(const Event&) override { probe().change(1, "key"); }
};

struct ProbeTest : ::testing::Test {
    ManualRunLoop loop;
    ScriptedPort port;
    Probe* probe = nullptr;
    std::unique_ptr<View> rootWithProbe(bool pulls) {
        auto root = std::make_unique<View>(Rect{{}, {200, 100}});
        probe = &root->addSubview(std::make_unique<Probe>(pulls));
        return root;
    }
};

TEST_F(ProbeTest, TracksAlikeWhetherItIsPushedOrPulls) {
    for (const bool pulls : {false, true}) {
        HostedView host(rootWithProbe(pulls));
        Receiver target;
        ProbeCell& cell = probe->probe();
        cell.setTarget(&target);
        cell.setAction(action<&Receiver::act>());
        cell.sendActionOn({});  // it sends on its own
        cell.hook = [&](std::string_view where) {
            EXPECT_TRUE(where != "drag" || port.toolTip == cell.stringValue());
        };
        port.script.emplace_back([&] { host.drag({60, 45}); });
        port.script.emplace_back([&] { host.wheel({60, 45}, 0.2F); });
        port.script.emplace_back([&] { host.release({150, 50}); });
        host.press({60, 40});
        while (!pulls && port.waitForEvent()) {
        }
        EXPECT_EQ(probe->intValue(), 6);  // five points up and a notch
        EXPECT_TRUE(target.count == 2 && target.last == probe);
        EXPECT_EQ(port.notifications[AccessibilityNotification::ValueChanged].back(), &cell);
        EXPECT_EQ(port.toolTip, "");
        EXPECT_EQ(Application::current().currentEvent()->type, EventType::LeftMouseUp);
        EXPECT_THAT(cell.log, ::testing::ElementsAre("start 10,20", "drag 10,25", "up 100,30"));
    }
}

TEST_F(ProbeTest, KeepsOtherEventsInOrderWhileItPullsAndEndsWhenThePointerIsLost) {
    HostedView host(rootWithProbe(true));
    port.script.emplace_back([&] { host.key(kUpArrowCharacter), host.drag({60, 50}); });
    port.script.emplace_back([&] {
        EXPECT_EQ(probe->intValue(), 10);  // the key waits
        host.window.visibilityDidChange(false);
    });
    host.press({60, 40});
    EXPECT_EQ(probe->intValue(), 11);
    EXPECT_EQ(probe->probe().log.back(), "stop 10,30");
    host.release({60, 50});  // the real one comes late and goes nowhere
    EXPECT_EQ(probe->probe().log.size(), 3U);

    port.script.clear();  // nothing can come any more
    host.press({60, 40});
    EXPECT_EQ(probe->probe().log.back(), "stop 10,20");
}

// The button is let go, or the pointer lost, while an action runs: in a dialog's loop, for example.
TEST_F(ProbeTest, PullsNoLongerThanItsPressLasts) {
    for (const bool isStart : {true, false}) {
        for (const int way : {0, 1, 2}) {
            SCOPED_TRACE(std::to_string(isStart) + std::to_string(way));
            HostedView host(rootWithProbe(true));
            ProbeCell& cell = probe->probe();
            cell.hook = [&](std::string_view where) {
                if (where != (isStart ? "start" : "drag")) return;
                host.move({5, 5});
                EXPECT_EQ(probe->intValue(), isStart ? 0 : 10) << "the key waits";
                if (way == 0) probe->setHidden(true);
                if (way == 1) host.window.cancelTracking();
                if (way == 2) host.release({60, 50});
            };
            port.script = {[&] { host.key(kUpArrowCharacter), host.drag({60, 50}); }, [] {}};
            host.window.makeFirstResponder(probe);
            host.press({60, 40});
            EXPECT_EQ(port.script.size(), isStart ? 2U : 1U) << "it waits for nothing";
            EXPECT_EQ(cell.log.back().substr(0, 2), !isStart && way == 2 ? "up" : "st");
            EXPECT_EQ(probe->intValue(), isStart ? 0 : way == 0 ? 10 : 11);
        }
    }
}

// Deleted at once, and discarded as a host does it, in every callback there is.
TEST_F(ProbeTest, SurvivesTheDeletionOfItsControlInEachCallback) {
    for (const std::string_view place :
         {"start", "drag", "up", "wheel", "key", "value", "action"}) {
        for (const int way : {0, 1, 2, 3}) {
            SCOPED_TRACE(std::string(place) + std::to_string(way));
            const bool pulls = way / 2 != 0;
            HostedView host(rootWithProbe(pulls));
            const WeakPointer<View> view(probe);
            probe->probe().hook = [&](std::string_view where) {
                if (where != place || !view) return;
                if (way % 2 != 0) return probe->removeFromSuperview();
                probe->takeFromSuperview().reset();
            };
            Receiver target;
            target.react = [&] { probe->probe().hook("action"); };
            probe->probe().setTarget(&target);
            probe->probe().setAction(action<&Receiver::act>());
            const auto rest = [&] {
                host.drag({60, 50});
                host.wheel({60, 50}, 1.0F);
                host.release({60, 50});
            };
            if (pulls) port.script = {rest, rest};
            host.press({60, 40});
            rest();
            host.key(kUpArrowCharacter);
            loop.advance(0.1);
            port.script.clear();
            EXPECT_FALSE(view);
            host.display();
        }
    }
}

}  // namespace
}  // namespace veltra::testing
