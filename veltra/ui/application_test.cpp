// SPDX-License-Identifier: MIT
#include "veltra/ui/application.h"

#include "veltra/platform/testing/manual_run_loop.h"
#include "veltra/ui/control.h"
#include "veltra/ui/testing/scripted_port.h"

namespace veltra::testing {
namespace {

struct Passive final : View {
    using View::View;
    bool takes = false;
    std::function<void()> hook = [] {};
    void mouseDown(const Event& event) override {
        hook();
        if (!takes) View::mouseDown(event);
    }
    void scrollWheel(const Event& event) override {
        if (!takes) View::scrollWheel(event);
    }
};

TEST(Events, TellWhetherSomebodyTookThemAndStayCurrentUntilTheNext) {
    const ScriptedPort port;
    Application& application = Application::current();
    Shown<Passive> host(Rect{{}, {100, 100}});
    const auto post = [&](EventType type) {
        Event event = host.eventAt(type, {5, 5});
        event.clickCount = 1;
        return application.postEvent(event);
    };
    for (const EventType type :
         {EventType::LeftMouseDown, EventType::KeyDown, EventType::ScrollWheel})
        EXPECT_FALSE(post(type));
    host.view.takes = true;
    bool inner = true;
    host.view.hook = [&] { inner = post(EventType::KeyDown); };  // untaken, inside a taken one
    EXPECT_TRUE(post(EventType::LeftMouseDown));
    EXPECT_FALSE(inner || application.isHandlingEvent());
    EXPECT_EQ(application.currentEvent()->type, EventType::LeftMouseDown);
    host.drag({6, 6}, kShiftKeyMask);
    EXPECT_EQ(application.currentEvent()->modifierFlags, kShiftKeyMask) << "a timer finds it";
    host.view.setHidden(true);
    EXPECT_FALSE(post(EventType::ScrollWheel)) << "no view is there";
    EXPECT_TRUE(application.postEvent(Event())) << "dropped: there is no window";
    EXPECT_EQ(application.currentEvent()->type, EventType::ScrollWheel);
}

TEST(Actions, GoUpTheChainsOfTheKeyAndTheMainWindowAndEndAtTheDelegate) {
    const ScriptedPort port;
    struct Able final : View {
        using View::View;
        int count = 0;
        bool acceptsFirstResponder() const override { return true; }
        void act() { ++count; }
    };
    Shown<Able> host(Rect{{}, {100, 100}});
    auto& inner = host.view.addSubview(std::make_unique<Able>(Rect{{}, {10, 10}}));
    Application& application = Application::current();
    const auto isSent = [&](Anchored* target) {
        return application.sendAction(action<&Able::act>(), target, nullptr);
    };
    EXPECT_FALSE(isSent(nullptr));
    host.window.makeFirstResponder(&inner);
    EXPECT_TRUE(isSent(nullptr) && inner.count == 1);
    host.window.makeFirstResponder(&host.view);
    EXPECT_TRUE(isSent(nullptr) && isSent(&inner) && host.view.count == 1 && inner.count == 2);
}

// Outside of any event; others come meanwhile.
TEST(Trash, OutlivesTheActionThatDiscardedIt) {
    struct Acting final : Anchored {
        std::function<void()> react;
        void act() { react(); }
    };
    const ScriptedPort port;
    ManualRunLoop loop;
    Shown<View> host(Rect{{}, {100, 100}});
    for (const bool isTimer : {true, false}) {
        View& view = host.view.addSubview(std::make_unique<View>(Rect{{}, {10, 10}}));
        const WeakPointer<View> alive(&view);
        Acting target;
        target.react = [&] {
            view.removeFromSuperview();
            host.move({50, 50});
            EXPECT_TRUE(alive) << isTimer;
        };
        const Action act = action<&Acting::act>();
        const auto timer =
            loop.schedule({.interval = milliseconds(1), .target = &target, .action = act});
        if (!isTimer) timer->invalidate();
        if (!isTimer) Application::current().sendAction(act, &target, nullptr);
        loop.advance(0.1);
        EXPECT_FALSE(alive) << isTimer;
    }
}

}  // namespace
}  // namespace veltra::testing
