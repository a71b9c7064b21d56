// SPDX-License-Identifier: MIT
#include "veltra/controls/keyboard/toolbar_window.h"

#include "veltra/controls/keyboard/keyboard_panel.h"
#include "veltra/controls/keyboard/keyboard_window.h"
#include "veltra/ui/testing/scripted_port.h"

namespace veltra {
namespace {

constexpr AutoresizingMask kStretches = AutoresizingMask(kViewWidthSizable) | kViewHeightSizable;
constexpr Rect kKeys{{10, 20}, {280, 160}};
constexpr Rect kLarger{{}, {700, 500}};

// Calls out at whatever happens to it.
struct Witness : View {
    using View::View;
    void viewDidMoveToWindow() override { tell(); }
    void frameDidChange() override { tell(); }
    void tell() const {
        if (const auto call = callback) call();
    }
    std::function<void()> callback;
};

class KeyboardWindows : public ::testing::Test {
protected:
    testing::ScriptedPort port;
    std::unique_ptr<DfKeyboardWindow> window;
    Witness* keys = nullptr;  // stretches with the content
    Witness* strip = nullptr;

    KeyboardWindows() { make(); }
    void make() {
        window = std::make_unique<DfKeyboardWindow>(Rect{{50, 60}, {300, 200}});
        window->setContentView(content<View>());
        auto made = std::make_unique<Witness>(Rect{{}, {201, 30}});
        strip = made.get();
        window->setToolbarView(std::move(made));
        window->df_addToolbarWidget();
        window->df_addToolbarWidget();  // is there
    }
    template <typename Content>
    std::unique_ptr<View> content() {
        auto made = std::make_unique<Content>(Rect{{}, {300, 200}});
        keys = &made->addSubview(std::make_unique<Witness>(kKeys));
        keys->setAutoresizingMask(kStretches);
        return made;
    }
};

template <typename W>
void comeAndGo(testing::ScriptedPort& port) {
    W window(Rect{{50, 60}, {300, 200}});
    window.setContentView(std::make_unique<View>(Rect{{}, {300, 200}}));
    const View& keys = window.contentView()->addSubview(std::make_unique<View>(kKeys));
    const_cast<View&>(keys).setAutoresizingMask(kStretches);
    window.setToolbarView(std::make_unique<View>(Rect{{}, {201, 30}}));
    window.setMinSize({100, 80});
    window.setMaxSize({900, 700});
    window.hideToolbar();  // is hidden
    for (const bool shows : {true, false, true, false}) {
        const float height = shows ? 30.0F : 0.0F;
        window.toggleToolbar();
        shows ? window.showToolbar() : window.hideToolbar();
        EXPECT_EQ(window.toolbarVisible(), shows);
        EXPECT_EQ(window.frame(), (Rect{{50, 60}, {300, 200 + height}}));
        EXPECT_EQ(window.frameWithoutToolBar(), (Rect{{50, 60}, {300, 200}}));
        EXPECT_EQ(port.lastWindow->minimum, (Size{100, 80 + height}));
        EXPECT_EQ(port.lastWindow->maximum, (Size{900, 700 + height}));
        EXPECT_EQ(window.toolbarView()->superview(), shows ? window.contentView() : nullptr);
        EXPECT_EQ(window.toolbarView()->frame().origin, (Point{49, 200}));
        EXPECT_EQ(keys.frame(), kKeys);
        EXPECT_EQ(keys.autoresizingMask(), kStretches);
    }
    EXPECT_EQ(port.lastWindow->frames.size(), 4U);
}

TEST_F(KeyboardWindows, TheStripComesAndGoesWithoutStretchingAnything) {
    comeAndGo<DfKeyboardWindow>(port);
    comeAndGo<DfKeyboardPanel>(port);
    DfKeyboardPanel panel(Rect{{}, {300, 200}});
    for (const bool isOnScreen : {false, true}) {
        panel.visibilityDidChange(isOnScreen);
        panel.performMiniaturize();
        EXPECT_EQ(port.lastWindow->isMiniaturized, isOnScreen);
    }
}

TEST_F(KeyboardWindows, LimitsSpeakOfTheContentAndTheStripStaysOnTop) {
    window->showToolbar();
    window->setMinSize({120, 90});
    window->setMaxSize({600, 400});
    EXPECT_EQ(window->minSize(), (Size{120, 120}));
    window->setFrame({{50, 60}, {800, 330}});
    EXPECT_EQ(strip->frame(), (Rect{{199, 300}, {201, 30}}));
    EXPECT_EQ(keys->frame(), (Rect{{10, 20}, {580, 260}}));
    strip->setAutoresizingMask(kStretches);
    window->frameDidChange({{0, 0}, {500, 130}});  // by the user
    EXPECT_EQ(strip->frame(), (Rect{{0, 100}, {500, 30}}));
    window->setMinSize({});
    window->setFrame({{}, {100, 10}});
    EXPECT_EQ(window->frame().size.height, 30.0F);
    window->hideToolbar();
    // A limit that was set lately holds now, and what it changes goes to the content.
    window->setFrame({{}, {300, 200}});
    window->setMinSize({400, 250});
    const Size before = keys->frame().size;
    window->showToolbar();
    EXPECT_EQ(window->frame().size, (Size{400, 280}));
    EXPECT_EQ(keys->frame().size, (Size{before.width + 100, before.height + 50}));
}

TEST_F(KeyboardWindows, TheStripMovesOverToANewContentWhereverYPoints) {
    window->showToolbar();
    window->setContentView(nullptr);
    window->toggleToolbar();
    window->toggleToolbar();
    window->setContentView(content<testing::Flipped<View>>());
    EXPECT_EQ(keys->frame(), kKeys.movedBy({0, 30}));
    EXPECT_EQ(strip->frame(), (Rect{{49, 0}, {201, 30}}));
    EXPECT_EQ(window->toolbarButton(), nullptr) << "it has gone with its content";
    window->df_addToolbarWidget();
    window->hideToolbar();
    EXPECT_EQ(keys->frame(), kKeys);
    window->showToolbar();
    window->setContentView(content<View>());
    EXPECT_EQ(keys->frame(), kKeys);
    EXPECT_EQ(window->toolbarButton()->superview(), window->contentView());
    window->setToolbarView(std::make_unique<View>(Rect{{}, {100, 20}}));
    EXPECT_EQ(window->toolbarView()->frame(), (Rect{{100, 205}, {100, 20}}));
}

TEST_F(KeyboardWindows, TheButtonStaysInTheCornerAboveTheStrip) {
    Button* const button = window->toolbarButton();
    EXPECT_EQ(window->contentView()->subviews().size(), 2U);
    EXPECT_EQ(button->frame(), (Rect{{260, 174}, {28, 22}}));
    strip->setAutoresizingMask(kStretches);
    button->performClick();
    EXPECT_TRUE(window->toolbarVisible() && button->isOn());
    EXPECT_EQ(button->frame(), (Rect{{260, 204}, {28, 22}})) << "where it was on screen";
    EXPECT_EQ(window->contentView()->hitTest({270, 215}), button);
    EXPECT_FALSE(button->mouseDownCanMoveWindow());
    window->hideToolbar();
    EXPECT_FALSE(button->isOn());
    button->buttonCell().setHovered(true);
    window->setContentView(content<View>());  // it moves over, the pointer is elsewhere
    EXPECT_FALSE(button->buttonCell().isHovered());
}

TEST_F(KeyboardWindows, IgnoreAToggleWithinAToggle) {
    strip->setAutoresizingMask(kStretches);
    int calls = 0;
    strip->callback = keys->callback = [&] {
        ++calls;
        window->toggleToolbar();
    };
    for (const bool shows : {true, false}) {
        window->toggleToolbar();
        EXPECT_GT(std::exchange(calls, 0), 0);
        EXPECT_EQ(window->toolbarVisible(), shows);
        EXPECT_EQ(window->frame().size.height, shows ? 230.0F : 200.0F);
    }
    strip->callback = keys->callback = nullptr;
}

TEST_F(KeyboardWindows, SurviveDeletionAndNewContentInEachCallback) {
    const std::pair<bool, std::function<void()>> acts[] = {
        // whether the strip is shown before, and what is done
        {false, [&] { window->showToolbar(); }},
        {true, [&] { window->hideToolbar(); }},
        {true, [&] { window->setToolbarView(nullptr); }},
        {true, [&] { window->setContentView(content<View>()); }},
        {true, [&] { window->setFrame(kLarger); }},
        {false, [&] { window->toolbarButton()->performClick(); }},
    };
    // Each calls out a number of times, each of which may be the last.
    for (const auto& [isShown, act] : acts) {
        for (const bool dies : {true, false}) {
            for (int last = 0;; ++last) {
                make();
                if (isShown) window->showToolbar();
                strip->setAutoresizingMask(kStretches);
                int calls = 0;
                strip->callback = keys->callback = [&] {
                    if (calls++ != last || !window) return;
                    if (dies) return Application::current().discard(std::move(window));
                    window->setContentView(content<testing::Flipped<View>>());
                };
                act();
                const bool isOver = calls <= last;
                EXPECT_EQ(window == nullptr, dies && !isOver);
                if (window != nullptr) {
                    const View& now = *window->contentView();
                    const float room = window->toolbarVisible() && now.isFlipped() ? 30.0F : 0.0F;
                    EXPECT_EQ(now.subviews().front()->frame().minY(), 20.0F + room);
                }
                window.reset();
                if (isOver) break;
                ASSERT_LT(last, 30);
            }
        }
    }
}

}  // namespace
}  // namespace veltra
