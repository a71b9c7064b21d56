// SPDX-License-Identifier: MIT
// One cell that needs everything the base offers: what carries it carries the controls.
#include "veltra/platform/testing/manual_run_loop.h"
#include "veltra/ui/action_cell.h"
#include "veltra/ui/control.h"
#include "veltra/ui/testing/scripted_port.h"

#include <gmock/gmock.h>

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

    AccessibilityRole accessibilityRole() const override { return AccessibilityRole::Slider; }
    std::optional<AccessibilityNumber> accessibilityNumber() const override {
        return AccessibilityNumber{doubleValue(), -100.0, 100.0, 1.0};
    }
    bool performAccessibilityAction(AccessibilityAction action) override {
        change(action == AccessibilityAction::Increment ? 1 : -1);
        return true;
    }

private:
    bool note(const char* what, Point point) {
        const Event* const event = Application::current().currentEvent();
        log.push_back(std::string(what) + " " + std::to_string(static_cast<int>(point.x)) + "," +
                      std::to_string(static_cast<int>(point.y)) + " in " +
                      std::to_string(event != nullptr ? static_cast<int>(event->type) : -1));
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

class Host final : public Anchored {
public:
    void changed(Control& sender) {
        ++count;
        last = &sender;
    }
    void plain() { ++count; }
    int count = 0;
    Control* last = nullptr;
};

class ProbeTest : public ::testing::Test {
protected:
    ManualRunLoop loop;
    ScriptedPort port;
};

TEST_F(ProbeTest, TracksAlikeWhetherItIsPushedOrPullsAndInBothDirections) {
    const auto run = [this](auto* kind, bool pulls) {
        std::remove_pointer_t<decltype(kind)>* probe = nullptr;
        HostedView host(rootWith(probe));
        Host target;
        probe->probe().setTarget(&target);
        probe->probe().setAction(action<&Host::changed>());
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
        if (!pulls) {
            drag();
            rest();
            last();
        }
        EXPECT_EQ(probe->intValue(), 6);  // five points up and a notch
        EXPECT_EQ(target.count, 2);
        EXPECT_EQ(target.last, probe);
        EXPECT_EQ(port.toolTip, "");
        EXPECT_EQ(Application::current().currentEvent()->type, EventType::LeftMouseUp);
        return probe->probe().log;
    };
    const auto down = std::to_string(static_cast<int>(EventType::LeftMouseDown));
    const auto dragged = std::to_string(static_cast<int>(EventType::LeftMouseDragged));
    const auto up = std::to_string(static_cast<int>(EventType::LeftMouseUp));
    for (const bool pulls : {false, true}) {
        EXPECT_THAT(run(static_cast<Probe<false>*>(nullptr), pulls),
                    ElementsAre("start 10,20 in " + down, "drag 10,25 in " + dragged,
                                "up 100,30 in " + up));
        EXPECT_THAT(run(static_cast<Probe<true>*>(nullptr), pulls),
                    ElementsAre("start 10,40 in " + down, "drag 10,35 in " + dragged,
                                "up 100,30 in " + up));
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
                        if (atOnce) {
                            victim->takeFromSuperview().reset();
                        } else {
                            victim->removeFromSuperview();
                        }
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

TEST_F(ProbeTest, TellsAScreenReaderWhatItIsAndWhere) {
    Probe<true>* probe = nullptr;
    HostedView host(rootWith(probe));
    host.display();
    const auto shown = shownAccessibilityChildren(*host.window.contentView());
    ASSERT_THAT(shown, ElementsAre(&probe->probe()));
    EXPECT_EQ(accessibilityElementAt(*probe, {55, 70}), shown[0]);
    EXPECT_EQ(accessibilityElementAt(*probe, {49, 70}), nullptr);
    EXPECT_EQ(accessibilityFrameInWindow(*shown[0]), (Rect{{50, 20}, {40, 60}}));
    port.notifications.clear();
    EXPECT_TRUE(shown[0]->performAccessibilityAction(AccessibilityAction::Increment));
    EXPECT_EQ(shown[0]->accessibilityNumber()->value, 1.0);
    EXPECT_THAT(port.notifications[AccessibilityNotification::ValueChanged], ElementsAre(shown[0]));
}

}  // namespace
}  // namespace veltra::testing
