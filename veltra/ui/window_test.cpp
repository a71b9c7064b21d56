// SPDX-License-Identifier: MIT
#include "veltra/ui/window.h"

#include "veltra/ui/button.h"
#include "veltra/ui/panel.h"
#include "veltra/ui/testing/scripted_port.h"

namespace veltra::testing {
namespace {

using ::testing::ElementsAre;

struct Listener final : View {
    using View::View;
    bool takesFirstMouse = true;
    bool movesWindow = false;
    int presses = 0;
    bool isEntered = false, isHeld = false;
    std::vector<bool> mainStates;
    bool acceptsFirstMouse(const Event*) const override { return takesFirstMouse; }
    bool mouseDownCanMoveWindow() const override { return movesWindow; }
    void mouseDown(const Event&) override { ++presses, isHeld = true; }
    void mouseDragged(const Event&) override { isHeld = true; }
    void mouseUp(const Event&) override { isHeld = false; }
    void rightMouseDragged(const Event&) override { isHeld = true; }
    void mouseEntered(const Event&) override { isEntered = true; }
    void mouseExited(const Event&) override { isEntered = false; }
    void windowStateDidChange() override { mainStates.push_back(window()->isMainWindow()); }
};

// Writes down each finger: + > - x for its beginning, movement, end and loss.
struct Touched : View {
    using View::View;
    std::string told;
    std::function<void(const std::string&)> react;
    bool acceptsTouches() const override { return true; }
    void touchBegan(const Event& event) override { tell('+', event); }
    void touchMoved(const Event& event) override { tell('>', event); }
    void touchEnded(const Event& event) override { tell('-', event); }
    void touchCancelled(const Event& event) override { tell('x', event); }
    void tell(char what, const Event& event) { tell(what + std::to_string(event.finger)); }
    void tell(const std::string& what) {
        told += what;
        if (const auto reaction = react) reaction(what);  // may delete this view
    }
};

struct TouchedWindow {
    HostedView host{std::make_unique<View>(Rect{{}, {100, 100}})};
    View& frame = host.window.contentView()->addSubview(std::make_unique<View>(Rect{{}, {80, 99}}));
    Touched* left = &frame.addSubview(std::make_unique<Touched>(Rect{{}, {40, 99}}));
    Touched* right = &frame.addSubview(std::make_unique<Touched>(Rect{{40, 0}, {40, 99}}));
    bool touch(EventType type, std::int64_t finger, float x) {
        return host.touch(type, {x, 50}, finger);
    }
};

std::vector<Button*> addButtons(View& root, std::initializer_list<float> places) {
    std::vector<Button*> buttons;
    for (const float x : places)
        buttons.push_back(&root.addSubview(std::make_unique<Button>(Rect{{x, 0}, {30, 30}}, "B")));
    return buttons;
}

TEST(KeyViewLoop, FollowsTheTreeTheNamedOrderAndTheWidgetAround) {
    const ScriptedPort port;
    Shown<View> host(Rect{{}, {100, 100}});
    const auto buttons = addButtons(host.view, {0.0F, 30.0F, 60.0F});
    const auto reached = [&host](char16_t key) {
        host.key(key);
        return host.window.firstResponder();
    };
    host.window.keyboardArrives(true);
    EXPECT_EQ(host.window.firstResponder(), buttons[0]);
    buttons[1]->setEnabled(false);
    EXPECT_EQ(reached(kTabCharacter), buttons[2]);
    EXPECT_EQ(reached(kBackTabCharacter), buttons[0]);
    host.port.hasNeighbours = true;
    host.key(kBackTabCharacter);
    EXPECT_TRUE(host.port.isKeyboardPassed);
    buttons[2]->setNextKeyView(buttons[1]);  // cannot take keys: the one that it names is next
    buttons[1]->setNextKeyView(buttons[0]);
    host.window.makeFirstResponder(buttons[2]);
    EXPECT_EQ(reached(kTabCharacter), buttons[0]);
    buttons[2]->setNextKeyView(buttons[0]);
    EXPECT_EQ(reached(kBackTabCharacter), buttons[2]) << "who names it";
    EXPECT_EQ(reached(kTabCharacter), buttons[0]);
    buttons[0]->setHidden(true);
    EXPECT_EQ(host.window.firstResponder(), nullptr);
}

TEST(KeyViewLoop, GivesTheKeysOnlyToWhoTakesThemFromWhoLetsThemGo) {
    struct Moody final : View {
        using View::View;
        bool accepts = true, becomes = true, resigns = true, hasResigned = false;
        std::function<void()> react = [] {};
        bool acceptsFirstResponder() const override { return accepts; }
        bool becomeFirstResponder() override { return becomes; }
        bool resignFirstResponder() override {
            std::exchange(react, [] {})();
            hasResigned = resigns;
            return resigns;
        }
    };
    const ScriptedPort port;
    Shown<View> host(Rect{{}, {100, 100}});
    auto& one = host.view.addSubview(std::make_unique<Moody>(Rect{{}, {50, 50}}));
    auto& other = host.view.addSubview(std::make_unique<Moody>(Rect{{50, 0}, {50, 50}}));
    Moody elsewhere({{}, {50, 50}});
    const auto gives = [&](Responder* to) { return host.window.makeFirstResponder(to); };
    EXPECT_TRUE(gives(&one));
    other.accepts = false;
    EXPECT_FALSE(gives(&elsewhere) || gives(&other));
    other.accepts = true;
    one.resigns = false;
    EXPECT_FALSE(gives(&other) || gives(&host.window));
    EXPECT_EQ(host.window.firstResponder(), &one);
    one.resigns = true;
    other.becomes = false;
    EXPECT_FALSE(gives(&other));
    EXPECT_EQ(host.window.firstResponder(), nullptr);
    EXPECT_TRUE(gives(&one) && gives(&host.window));
    EXPECT_EQ(host.window.firstResponder(), nullptr);
    // Whom one names that resigns is asked too, and keeps the keys of one that goes.
    auto& third = host.view.addSubview(std::make_unique<Moody>(Rect{{50, 50}, {50, 50}}));
    other.becomes = true;
    gives(&one);
    one.react = [&] { gives(&third); };
    EXPECT_TRUE(gives(&other) && third.hasResigned);
    EXPECT_EQ(host.window.firstResponder(), &other);
    gives(&one);
    one.react = [&] { gives(&third); };
    one.removeFromSuperview();
    EXPECT_EQ(host.window.firstResponder(), &third) << "not the heir";
    auto& group = host.view.addSubview(std::make_unique<View>(Rect{{}, {100, 100}}));
    auto& inGroup = group.addSubview(std::make_unique<Moody>(Rect{{}, {50, 50}}));
    group.addSubview(third.takeFromSuperview());
    gives(&third);
    third.react = [&] { gives(&inGroup); };
    inGroup.react = [&] { gives(&other); };
    group.setHidden(true);
    EXPECT_EQ(host.window.firstResponder(), &other) << "not the heir";
    group.setHidden(false);
    gives(&inGroup);
    inGroup.resigns = false;
    group.setHidden(true);
    EXPECT_EQ(host.window.firstResponder(), nullptr) << "nobody hidden keeps them";
    // Two that pass them to and fro.
    group.setHidden(false);
    gives(&other);
    auto& fourth = host.view.addSubview(std::make_unique<Moody>(Rect{{0, 50}, {50, 50}}));
    const std::function<void()> pass = [&] {
        const bool isOther = host.window.firstResponder() == &other;
        (isOther ? other : third).react = pass;
        gives(isOther ? &third : &other);
    };
    other.react = third.react = pass;
    EXPECT_TRUE(gives(&fourth));
    EXPECT_EQ(host.window.firstResponder(), &fourth);
    other.react = third.react = [] {};
}

TEST(FocusRing, FollowsItsViewWhileKeysLeadBeyondItsBounds) {
    const ScriptedPort port;
    Shown<View> host(Rect{{}, {100, 100}});
    View& frame = host.view.addSubview(std::make_unique<View>(Rect{{}, {100, 50}}));
    const auto buttons = addButtons(frame, {10.0F, 50.0F});
    const auto rings = [&](bool isAllInvalid = true) {
        if (isAllInvalid) host.window.invalidate({{}, {100, 100}});
        return host.drawn(RecordingCanvas::What::StrokePath);
    };
    host.click({15, 15});
    EXPECT_FALSE(buttons[0]->showsFocus());
    host.window.makeFirstResponder(buttons[0]);
    const std::size_t lines = rings().size();  // of the two buttons
    host.key(kTabCharacter);
    EXPECT_TRUE(buttons[1]->showsFocus());
    auto drawn = rings();
    ASSERT_EQ(drawn.size(), lines + 1);
    EXPECT_EQ(drawn.back().rect, (Rect{{47, 67}, {36, 36}}));  // the middle of its line
    EXPECT_EQ(drawn.back().clip, (Rect{{0, 50}, {100, 50}}));  // of the view around
    buttons[1]->setFrameOrigin({60, 10});
    host.display();
    drawn = rings(false);  // asked for by the drawing before
    ASSERT_FALSE(drawn.empty());
    EXPECT_EQ(drawn.back().rect.origin, (Point{57, 57}));
    host.press({5, 90});
    EXPECT_THAT(host.port.invalid, ::testing::Contains(Rect{{56, 56}, {38, 38}}));
    EXPECT_EQ(rings().size(), lines);
    host.key(kTabCharacter);
    host.window.keyStateDidChange(false);
    EXPECT_EQ(rings().size(), lines);
    // A view that its shape covers is a part of it.
    host.window.keyStateDidChange(true);
    View& ground = host.view.addSubview(std::make_unique<View>(Rect{{20, 60}, {30, 20}}));
    host.window.makeFirstResponder(addButtons(ground, {0.0F})[0]);
    ground.subviews()[0]->setFrame(ground.bounds());
    EXPECT_EQ(rings().back().clip, (Rect{{}, {100, 100}}));
}

TEST(KeyViewLoop, PassesOverWhatIsOutOfSightAndInheritsWhatGoes) {
    const ScriptedPort port;
    Shown<View> host(Rect{{}, {100, 100}});
    const auto buttons =
        addButtons(host.view, {0.0F, 120.0F, 30.0F, 60.0F});  // the second is out of sight
    host.window.keyboardArrives(true);
    host.key(kTabCharacter);
    EXPECT_EQ(host.window.firstResponder(), buttons[2]);
    buttons[2]->removeFromSuperview();
    EXPECT_EQ(host.window.firstResponder(), buttons[3]) << "the right neighbour";
    buttons[1]->removeFromSuperview();
    EXPECT_EQ(host.window.firstResponder(), buttons[3]);
    buttons[3]->removeFromSuperview();
    EXPECT_EQ(host.window.firstResponder(), buttons[0]) << "none behind: the one before";
    buttons[0]->removeFromSuperview();
    EXPECT_EQ(host.window.firstResponder(), nullptr);
}

TEST(Touches, BelongToTheViewThatTheyBeganOn) {
    const ScriptedPort port;
    TouchedWindow all;
    for (const auto& [finger, x] : {std::pair{1, 10.0F}, {7, 50.0F}, {1, 50.0F}})
        EXPECT_TRUE(all.touch(EventType::TouchBegan, finger, x));
    EXPECT_FALSE(all.touch(EventType::TouchBegan, 9, 90.0F)) << "of the pointer";
    for (const int finger : {1, 9}) {
        for (const EventType type : {EventType::TouchMoved, EventType::TouchEnded,
                                     EventType::TouchMoved, EventType::TouchCancelled})
            EXPECT_TRUE(all.touch(type, finger, 60.0F));
    }
    EXPECT_EQ(all.left->told + " " + all.right->told, "+1>1-1 +7");
}

TEST(Touches, AreCancelledOnceWhenTheirViewOrWindowGoes) {
    const ScriptedPort port;
    const std::function<void(TouchedWindow&)> losses[] = {
        [](auto& all) { all.left->setHidden(true); },
        [](auto& all) { all.frame.setHidden(true); },
        [](auto& all) {
            if (auto view = all.left->takeFromSuperview()) all.frame.addSubview(std::move(view));
        },
        [](auto& all) { all.host.window.contentView()->addSubview(all.frame.takeFromSuperview()); },
        [](auto& all) { all.host.window.visibilityDidChange(false); },
        [](auto& all) { all.host.window.cancelTracking(); }};
    for (const auto& lose : losses) {
        TouchedWindow all;
        all.touch(EventType::TouchBegan, 1, 10);
        all.touch(EventType::TouchBegan, 2, 20);
        all.touch(EventType::TouchBegan, 8, 50);
        lose(all);
        lose(all);
        all.touch(EventType::TouchEnded, 1, 10);
        EXPECT_EQ(all.left->told, "+1+2x1x2") << &lose - losses;
        const bool isLeftAlone = &lose == &losses[0] || &lose == &losses[2];
        EXPECT_EQ(all.right->told, isLeftAlone ? "+8" : "+8x8") << &lose - losses;
        all.left->setHidden(false);
        all.frame.setHidden(false);
        all.touch(EventType::TouchBegan, 1, 10);
        EXPECT_EQ(all.left->told, "+1+2x1x2+1") << &lose - losses;
        // The view may go in each of them.
        all.left->react = [&all](const std::string&) {
            if (Touched* const view = std::exchange(all.left, nullptr)) view->removeFromSuperview();
        };
        lose(all);
        EXPECT_EQ(all.left, nullptr);
    }
}

TEST(Windows, AreOnScreenBetweenOrderingFrontAndOut) {
    const ScriptedPort port;
    Shown<View> host(Rect{{}, {100, 100}});
    host.window.orderFront();
    EXPECT_TRUE(host.port.isVisible);
    host.window.orderOut();
    EXPECT_FALSE(host.port.isVisible);
    host.window.makeKeyAndOrderFront();
    EXPECT_TRUE(host.port.isVisible);
    host.window.close();
    EXPECT_FALSE(host.port.isVisible);
}

TEST(Windows, TakeThePointerAwayFromWhatIsHiddenOrTakenOut) {
    const ScriptedPort port;
    Shown<View> host(Rect{{}, {100, 100}});
    View& frame = host.view.addSubview(std::make_unique<View>(Rect{{}, {99, 99}}));
    auto& listener = frame.addSubview(std::make_unique<Listener>(Rect{{50, 0}, {40, 40}}));
    for (View* const hidden : {static_cast<View*>(&listener), &frame}) {
        host.move({55, 5});
        Application::current().postEvent(host.eventAt(EventType::RightMouseDown, {55, 5}));
        host.press({55, 5});
        EXPECT_TRUE(listener.isEntered && listener.isHeld);
        hidden->setHidden(true);
        EXPECT_FALSE(listener.isEntered || listener.isHeld);
        hidden->setHidden(false);
        host.drag({56, 5});
        Application::current().postEvent(host.eventAt(EventType::RightMouseDragged, {56, 5}));
        EXPECT_FALSE(listener.isHeld) << "the drag is over";
        host.release({56, 5});
    }
    host.move({55, 5});
    host.press({55, 5});
    EXPECT_TRUE(listener.isEntered && listener.isHeld);
    const std::unique_ptr<View> taken = frame.takeFromSuperview();
    EXPECT_FALSE(listener.isEntered || listener.isHeld);
}

// Hands on what else it hears, to somebody who may destroy it.
struct Fatal final : Touched {
    using Touched::tell, Touched::Touched;
    bool acceptsFirstResponder() const override { return true; }
    void mouseEntered(const Event&) override { tell("entered"); }
    void mouseExited(const Event&) override { tell("exited"); }
    void mouseDown(const Event&) override { tell("press"); }
    void windowStateDidChange() override { tell("state"); }
    void appearanceDidChange() override { tell("appearance"); }
    void viewDidMoveToWindow() override { tell("moved"); }
    void frameDidChange() override { tell("frame"); }
    bool becomeFirstResponder() override { return tell("become"), true; }
    bool resignFirstResponder() override { return tell("resign"), true; }
};

// The window is destroyed, or its view taken out, in each call out.
TEST(Windows, MayGoInWhateverTheirViewsDo) {
    const ScriptedPort port;
    std::unique_ptr<HostedView> host;
    constexpr Point kInside{5, 5}, kOutside{500, 500};
    constexpr Rect kSmaller{{}, {90, 90}};
    const std::function<void()> acts[] = {[&] { host->move(kInside); },
                                          [&] { host->press(kInside); },
                                          [&] { host->window.makeFirstResponder(nullptr); },
                                          [&] { host->touch(EventType::TouchBegan, kInside, 3); },
                                          [&] { host->window.keyStateDidChange(false); },
                                          [&] { host->window.keyStateDidChange(true); },
                                          [&] { host->window.setAppearance(Appearance::Dark); },
                                          [&] { host->window.frameDidChange(kSmaller); },
                                          [&] { host->move(kOutside); },
                                          [&] { host->window.cancelTracking(); },
                                          [&] { host->touch(EventType::TouchBegan, kInside, 3); },
                                          [&] { host->window.contentView()->setHidden(true); }};
    for (const std::string place : {"entered", "exited", "press", "+3", "x3", "state", "appearance",
                                    "moved", "frame", "become", "resign"}) {
        for (const bool isTaken : {true, false}) {
            for (const std::size_t first : {0U, 3U}) {  // by the pointer, or by a finger
                SCOPED_TRACE(place + std::to_string(isTaken) + std::to_string(first));
                auto made = std::make_unique<Fatal>(Rect{{}, {100, 100}});
                const WeakPointer<View> view(made.get());
                int calls = 0;
                made->react = [&](const std::string& what) {
                    if (what != place || ++calls > 1) return;
                    if (isTaken && host) host->window.takeContentView().reset();
                    if (!isTaken) host.reset();
                };
                host = std::make_unique<HostedView>(std::make_unique<View>(Rect{{}, {9, 9}}));
                host->window.setContentView(std::move(made));
                for (std::size_t i = first; i < std::size(acts) && host && view; ++i)
                    acts[i]();
                EXPECT_TRUE(calls > 0 || first > 0);
                EXPECT_EQ(!view, calls > 0);
                host.reset();
            }
        }
    }
}

TEST(Windows, KeepToTheirLimitsAndPanelsLeaveTheMainWindowAlone) {
    ScriptedPort port;
    Window window(Rect{{0, 0}, {300, 200}});
    Panel panel(Rect{{0, 0}, {100, 100}});
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

TEST(Windows, AreNotResizedByTheirLimitsButByTheNextSize) {
    const ScriptedPort port;
    struct Noting final : Window {
        using Window::Window;
        std::vector<Rect> before;
        void windowDidChangeFrame(const Rect& frame) override { before.push_back(frame); }
    };
    Noting window(Rect{{0, 0}, {300, 200}});
    window.setMinSize({300, 230});
    EXPECT_EQ(window.frame().size, (Size{300, 200}));
    window.setFrame({{9, 9}, {300, 200}});
    EXPECT_EQ(window.frame(), (Rect{{9, 9}, {300, 200}})) << "a move alone";
    window.setFrame({{9, 9}, {310, 200}});
    EXPECT_EQ(window.frame().size, (Size{310, 230}));
    EXPECT_THAT(window.before, ElementsAre(Rect{{0, 0}, {300, 200}}, Rect{{9, 9}, {300, 200}}));
}

TEST(Windows, AskTheirViewsAboutPressesThatActivateOrMove) {
    const ScriptedPort port;
    Shown<Listener> host(Rect{{}, {100, 100}});
    const struct {
        bool isFirst, takesFirst, movesWindow, canMove;
        int presses;
    } rows[] = {{true, true, false, false, 1},
                {true, false, false, false, 0},
                {false, false, false, false, 1},
                {false, false, true, false, 1},
                {false, false, true, true, 0}};
    for (const auto& row : rows) {
        host.view.presses = 0;
        host.view.takesFirstMouse = row.takesFirst;
        host.view.movesWindow = row.movesWindow;
        host.port.canMove = row.canMove;
        Event event = host.eventAt(EventType::LeftMouseDown, {5, 5});
        event.clickCount = 1;
        event.isFirstMouse = row.isFirst;
        Application::current().postEvent(event);
        host.release({5, 5});
        EXPECT_EQ(host.view.presses, row.presses) << &row - rows;
    }
}

TEST(Windows, TellTheirViewsWhetherTheUserWorksInThem) {
    ScriptedPort port;
    Shown<Listener> first(Rect{{}, {100, 100}});
    first.view.mainStates.clear();
    {
        Panel panel(Rect{{0, 0}, {100, 100}});
        panel.keyStateDidChange(true);
        EXPECT_TRUE(first.window.isMainWindow());
        HostedView second(std::make_unique<Listener>(Rect{{}, {100, 100}}));
        EXPECT_FALSE(first.window.isMainWindow());
        EXPECT_EQ(first.view.mainStates.back(), false);
    }
    for (const bool isActive : {true, false}) {  // as a part of a toolkit's active window
        first.window.activeStateDidChange(isActive);
        EXPECT_EQ(first.view.mainStates.back(), isActive);
    }
}

}  // namespace
}  // namespace veltra::testing
