// SPDX-License-Identifier: MIT
// One cell that needs everything the base offers: what carries it carries the controls.
#include "veltra/platform/testing/manual_run_loop.h"
#include "veltra/ui/button.h"
#include "veltra/ui/keyed_coder.h"
#include "veltra/ui/panel.h"
#include "veltra/ui/picture.h"
#include "veltra/ui/slider_cell.h"
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

TEST(ViewTree, ConvertsAndResizesThroughEveryMixOfDirections) {
    const ScriptedPort port;
    Probe<true>* flipped = nullptr;
    HostedView host(rootWith(flipped));
    View& inner = flipped->addSubview(std::make_unique<View>(Rect{{5, 10}, {20, 30}}));
    inner.setAutoresizingMask(kViewWidthSizable | kViewMinYMargin);
    flipped->setAutoresizingMask(kViewWidthSizable | kViewHeightSizable);
    // The inner view's lower left corner: 40 below the top of its superview, which is at 80.
    EXPECT_EQ(inner.convertPointToView({0, 0}, nullptr), (Point{55, 40}));
    EXPECT_EQ(inner.convertPointFromView({0, 0}, flipped), (Point{-5, 40}));
    EXPECT_EQ(inner.convertRectToView({{2, 3}, {4, 5}}, flipped), (Rect{{7, 32}, {4, 5}}));
    EXPECT_EQ(host.window.contentView()->hitTest({56, 41}), &inner);
    host.window.frameDidChange({{}, {240, 150}});
    EXPECT_EQ(flipped->frame(), (Rect{{50, 20}, {80, 110}})) << "shares go to what gives";
    EXPECT_EQ(inner.frame(), (Rect{{5, 60}, {60, 30}}));
}

TEST(ViewTree, DrawsExactlyWhatIsInvalidAndSeen) {
    const ScriptedPort port;
    class Spot final : public View {
    public:
        using View::View;
        void drawRect(Canvas& canvas, const Rect& dirty) override {
            canvas.fillRect(dirty, kBlack);
        }
    };
    HostedView host(std::make_unique<View>(Rect{{}, {100, 100}}));
    View& root = *host.window.contentView();
    View& left = root.addSubview(std::make_unique<Spot>(Rect{{0, 0}, {50, 50}}));
    View& right = root.addSubview(std::make_unique<Spot>(Rect{{50, 0}, {50, 50}}));
    View& deep = right.addSubview(std::make_unique<Spot>(Rect{{40, 40}, {50, 50}}));
    EXPECT_EQ(host.display().size(), 3U);
    left.setNeedsDisplayInRect({{10, 10}, {5, 5}});
    deep.setNeedsDisplay();  // most of it lies outside of its superview
    EXPECT_THAT(host.port.invalid, ElementsAre(Rect{{10, 85}, {5, 5}}, Rect{{90, 50}, {10, 10}}));
    const auto calls = host.display();
    ASSERT_EQ(calls.size(), 3U);  // the right one too: it lies under the deep one
    EXPECT_EQ(calls[0].rect, (Rect{{10, 85}, {5, 5}}));
    EXPECT_EQ(calls[2].clip, (Rect{{90, 50}, {10, 10}}).intersection(calls[2].clip));
    right.setHidden(true);
    host.port.invalid.clear();
    deep.setNeedsDisplay();
    EXPECT_TRUE(host.port.invalid.empty());
}

TEST(KeyViewLoop, FollowsTheTreeTheNamedOrderAndTheWidgetAround) {
    const ScriptedPort port;
    HostedView host(std::make_unique<View>(Rect{{}, {100, 100}}));
    View& root = *host.window.contentView();
    std::vector<Button*> buttons;
    for (const float x : {0.0F, 30.0F, 60.0F}) {
        buttons.push_back(&root.addSubview(std::make_unique<Button>(Rect{{x, 0}, {30, 30}}, "B")));
    }
    host.window.keyboardArrives(true);
    EXPECT_EQ(host.window.firstResponder(), buttons[0]);
    buttons[1]->setEnabled(false);
    host.key(kTabCharacter);
    EXPECT_EQ(host.window.firstResponder(), buttons[2]);
    host.key(kBackTabCharacter);
    EXPECT_EQ(host.window.firstResponder(), buttons[0]);
    host.port.hasNeighbours = true;
    host.key(kBackTabCharacter);
    EXPECT_TRUE(host.port.isKeyboardPassed);
    buttons[2]->setNextKeyView(buttons[0]);
    host.window.makeFirstResponder(buttons[2]);
    host.key(kTabCharacter);
    EXPECT_EQ(host.window.firstResponder(), buttons[0]);
    Host target;
    buttons[0]->setTarget(&target);
    buttons[0]->setAction(action<&Host::changed>());
    host.key(u' ');
    EXPECT_EQ(target.last, buttons[0]);
    buttons[0]->setHidden(true);
    EXPECT_EQ(host.window.firstResponder(), nullptr);
}

TEST(ButtonPress, CountsOnlyWhenLetGoInside) {
    const ScriptedPort port;
    HostedView host(std::make_unique<Button>(Rect{{}, {60, 24}}, "Mute", ButtonCell::Kind::Toggle));
    auto& button = static_cast<Button&>(*host.window.contentView());
    Host target;
    Application::current().setDelegate(&target);  // last in the chain
    button.setAction(action<&Host::plain>());
    host.click({10, 10});
    EXPECT_TRUE(button.isOn());
    host.press({10, 10});
    host.drag({100, 10});
    EXPECT_FALSE(button.cell()->isHighlighted());
    host.release({100, 10});
    EXPECT_TRUE(button.isOn());
    host.press({10, 10});
    host.window.cancelTracking();
    EXPECT_TRUE(button.isOn());
    EXPECT_EQ(target.count, 1);
    button.setEnabled(false);
    host.click({10, 10});
    EXPECT_EQ(target.count, 1);
}

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

TEST(KeyedArchive, GivesBackWhatWasPutIn) {
    KeyedCoder coder;
    coder.encodeColor(Color{0.25F, 0.5F, 1.0F, 0.5F}, "color");
    coder.encodeColor(std::nullopt, "none");
    coder.encodeRect({{1, 2}, {3, 4}}, "rect");
    coder.encodeInt64(INT64_MIN, "low");
    const KeyedCoder read(coder.archive());
    EXPECT_EQ(read.decodeColor("color"), (Color{0.25F, 0.5F, 1.0F, 0.5F}));
    EXPECT_EQ(read.decodeColor("none", kWhite), std::nullopt);
    EXPECT_EQ(read.decodeColor("rect.", kWhite), kWhite);
    EXPECT_EQ(read.decodeRect("rect"), (Rect{{1, 2}, {3, 4}}));
    EXPECT_EQ(read.decodeInt64("low"), INT64_MIN);
    EXPECT_EQ(read.decodeRect("color", {{9, 9}, {9, 9}}).size.width, 1.0F);
}

TEST(Windows, KeepToTheirLimitsAndPanelsLeaveTheMainWindowAlone) {
    ScriptedPort port;
    Window window(Rect{{0, 0}, {300, 200}});
    Panel panel(Rect{{0, 0}, {100, 100}});
    EXPECT_TRUE(panel.isPanel());
    window.setMinSize({200, 150});
    window.setMaxSize({400, 100});  // below the minimum
    window.setFrame({{5, 6}, {1000, 1000}});
    EXPECT_EQ(window.frame(), (Rect{{5, 6}, {400, 150}}));
    window.keyStateDidChange(true);
    panel.keyStateDidChange(true);
    EXPECT_EQ(Application::current().keyWindow(), &panel);
    EXPECT_EQ(Application::current().mainWindow(), &window);
    Application::current().terminate();
    EXPECT_TRUE(port.isTerminated);
}

TEST(TextThatIsTooLong, LosesItsEndBetweenCharacters) {
    const ScriptedPort port;
    const StyledText text{"Gru\u00DFformel", Font::systemFont(10.0F), {}};
    EXPECT_EQ(text.truncatedTo(55.0F).string, text.string);
    EXPECT_EQ(text.truncatedTo(40.0F).string, "Gru\u00DF\u2026");  // three bytes are the ellipsis
    EXPECT_EQ(text.truncatedTo(35.0F).string, "Gru\u2026");
    EXPECT_EQ(text.truncatedTo(0.0F).string, "\u2026");
    EXPECT_EQ(text.truncatedTo(40.0F, TextTruncation::Middle).string, "Gru\u2026el");
}

TEST(Pictures, ShowTheWholeWindowAtTheirScaleAndTheme) {
    const ScriptedPort port;
    class Sheet final : public View {
    public:
        using View::View;
        void drawRect(Canvas& canvas, const Rect&) override {
            canvas.fillRect({{0, 0}, {10, 5}}, systemColor(SystemColor::Label));
        }
    };
    PictureWindow picture({100, 50}, 1.5F, Appearance::Dark);
    picture.window().setContentView(std::make_unique<Sheet>(Rect{{}, {100, 50}}));
    const auto image = std::dynamic_pointer_cast<const RecordedImage>(picture.draw());
    ASSERT_TRUE(image);
    EXPECT_EQ(image->size(), (Size{100, 50}));
    ASSERT_EQ(image->canvas.calls.size(), 1U);
    EXPECT_EQ(image->canvas.calls[0].rect, (Rect{{0, 45}, {10, 5}}));
    EXPECT_EQ(image->canvas.calls[0].color, systemColor(SystemColor::Label, Appearance::Dark));
}

}  // namespace
}  // namespace veltra::testing
