// SPDX-License-Identifier: MIT
// One cell that needs everything the base offers: what carries it carries the controls.
#include "veltra/platform/testing/manual_run_loop.h"
#include "veltra/ui/action_cell.h"
#include "veltra/ui/control.h"
#include "veltra/ui/testing/scripted_port.h"

namespace veltra::testing {
namespace {

using ::testing::ElementsAre;

// A value that follows the pointer upwards, the wheel and the arrow keys.
class ProbeCell final : public ActionCell, public ToolTipSource {
public:
    ProbeCell() { setIntValue(0); }

    std::vector<std::string> log;
    std::function<void(const char* where)> hook = [](const char*) {};

    bool startTracking(Point point, View& view) override {
        ToolTipWindow::shared().showToolTipWindowForView(view, this, 0, point);
        return note("start", point);
    }
    bool continueTracking(Point last, Point current, View& view) override {
        const WeakPointer<ProbeCell> self(this);
        const float up = view.isFlipped() ? last.y - current.y : current.y - last.y;
        change(static_cast<std::int32_t>(up));
        if (!self) return true;
        ToolTipWindow::shared().updateToolTipPosition(current, view);
        return note("drag", current);
    }
    void stopTracking(Point, Point stop, View&, bool mouseIsUp) override {
        ToolTipWindow::shared().closeToolTipWindow();
        note(mouseIsUp ? "up" : "stop", stop);
    }
    void scrollWheel(const Event& event) override {
        const WeakPointer<ProbeCell> self(this);
        change(event.deltaY > 0.0F ? 1 : -1);
        if (self) hook("wheel");
    }
    void key(char16_t character) {
        const WeakPointer<ProbeCell> self(this);
        change(character == kUpArrowCharacter ? 1 : -1);
        if (self) hook("key");
    }
    std::string stringForTag(std::int32_t) override { return stringValue(); }

private:
    bool note(const char* what, Point point) {
        log.push_back(std::string(what) + " " + std::to_string(static_cast<int>(point.x)) + "," +
                      std::to_string(static_cast<int>(point.y)));
        hook(what);  // may delete the cell
        return true;
    }
    void change(std::int32_t by) {
        const WeakPointer<ProbeCell> self(this);
        setIntValue(intValue() + by);
        sendAction();
        if (self) hook("value");
    }
};

template <bool flipped>
class Probe final : public Control {
public:
    explicit Probe(const Rect& frame) : Control(frame, std::make_unique<ProbeCell>()) {}
    bool pulls = false;

    ProbeCell& probe() { return static_cast<ProbeCell&>(*cell()); }
    bool isFlipped() const override { return flipped; }
    bool acceptsFirstResponder() const override { return true; }
    void mouseDown(const Event& event) override {
        if (!pulls) return Control::mouseDown(event);
        probe().trackMouse(event, bounds(), *this, true);
    }
    void keyDown(const Event& event) override {
        const char16_t key = event.charactersIgnoringModifiers.front();
        if (key == kUpArrowCharacter || key == kDownArrowCharacter) return probe().key(key);
        Control::keyDown(event);
    }
};

// A flipped view with a probe of each kind: up is up in both.
template <bool flipped>
std::unique_ptr<View> rootWith(Probe<flipped>*& probe) {
    auto root = std::make_unique<View>(Rect{{}, {200, 100}});
    probe = &root->addSubview(std::make_unique<Probe<flipped>>(Rect{{50, 20}, {40, 60}}));
    return root;
}

class ProbeTest : public ::testing::Test {
protected:
    ManualRunLoop loop;
    ScriptedPort port;
};

TEST_F(ProbeTest, TracksAlikeWhetherItIsPushedOrPullsAndInBothDirections) {
    const auto run = [this](auto* kind, bool pulls) {
        std::remove_pointer_t<decltype(kind)>* probe = nullptr;
        HostedView host(rootWith(probe));
        Receiver target;
        probe->probe().setTarget(&target);
        probe->probe().setAction(action<&Receiver::act>());
        probe->pulls = pulls;
        probe->probe().sendActionOn({});  // it sends on its own
        probe->probe().hook = [&](const char* where) {
            if (where == std::string("drag")) {
                EXPECT_EQ(port.toolTip, probe->stringValue());
            }
        };
        const auto drag = [&] { host.drag({60, 45}); };
        const auto rest = [&] { host.wheel({60, 45}, 0.2F); };
        const auto last = [&] { host.release({150, 50}); };
        if (pulls) port.script = {drag, rest, last};
        host.press({60, 40});
        if (!pulls) drag(), rest(), last();
        EXPECT_EQ(probe->intValue(), 6);  // five points up and a notch
        EXPECT_EQ(target.count, 2);
        EXPECT_EQ(target.last, probe);
        EXPECT_EQ(port.notifications[AccessibilityNotification::ValueChanged].back(),
                  &probe->probe());
        EXPECT_EQ(port.toolTip, "");
        EXPECT_EQ(Application::current().currentEvent()->type, EventType::LeftMouseUp);
        return probe->probe().log;
    };
    for (const bool pulls : {false, true}) {
        EXPECT_THAT(run(static_cast<Probe<false>*>(nullptr), pulls),
                    ElementsAre("start 10,20", "drag 10,25", "up 100,30"));
        EXPECT_THAT(run(static_cast<Probe<true>*>(nullptr), pulls),
                    ElementsAre("start 10,40", "drag 10,35", "up 100,30"));
    }
}

TEST_F(ProbeTest, KeepsOtherEventsInOrderWhileItPullsAndEndsWhenThePointerIsLost) {
    Probe<false>* probe = nullptr;
    HostedView host(rootWith(probe));
    probe->pulls = true;
    port.script = {[&] {
                       host.key(kUpArrowCharacter);
                       host.drag({60, 50});
                   },
                   [&] {
                       EXPECT_EQ(probe->intValue(), 10);  // the key waits
                       host.window.visibilityDidChange(false);
                   }};
    host.press({60, 40});
    EXPECT_EQ(probe->intValue(), 11);
    EXPECT_THAT(probe->probe().log.back(), ::testing::StartsWith("stop 10,30"));
    host.release({60, 50});  // the real one comes late and goes nowhere
    EXPECT_EQ(probe->probe().log.size(), 3U);

    port.script.clear();  // nothing can come any more
    host.press({60, 40});
    EXPECT_THAT(probe->probe().log.back(), ::testing::StartsWith("stop 10,20"));
}

// Deleted at once, and discarded as a host does it, in every callback there is.
TEST_F(ProbeTest, SurvivesTheDeletionOfItsControlInEachCallback) {
    const std::string places[] = {"start", "drag",  "up",     "wheel",
                                  "key",   "value", "action", "timer"};
    for (const bool atOnce : {true, false}) {
        for (const bool pulls : {false, true}) {
            for (const std::string& place : places) {
                SCOPED_TRACE(place);
                struct Remover final : Anchored {
                    Probe<false>* probe = nullptr;
                    bool atOnce = false;
                    void remove() {
                        Control* const victim = std::exchange(probe, nullptr);
                        if (victim == nullptr) return;
                        if (!atOnce) return victim->removeFromSuperview();
                        victim->takeFromSuperview().reset();
                    }
                } remover;
                remover.atOnce = atOnce;
                HostedView host(rootWith(remover.probe));
                const WeakPointer<View> view(remover.probe);
                Probe<false>& probe = *remover.probe;
                probe.pulls = pulls;
                probe.probe().hook = [&](const char* where) {
                    if (place == where) remover.remove();
                };
                if (place == "action") {
                    probe.probe().setTarget(&remover);
                    probe.probe().setAction(action<&Remover::remove>());
                }
                if (place == "timer") {
                    loop.schedule({.target = &remover, .action = action<&Remover::remove>()});
                    loop.advance(0.01);
                }
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
}

}  // namespace
}  // namespace veltra::testing
