// SPDX-License-Identifier: MIT
#include "veltra/controls/keyboard/toolbar_window.h"

#include "veltra/controls/keyboard/keyboard_panel.h"
#include "veltra/controls/keyboard/keyboard_window.h"
#include "veltra/ui/testing/scripted_port.h"

namespace veltra {
namespace {

constexpr AutoresizingMask kStretches =
    AutoresizingMask(kViewWidthSizable) | AutoresizingMask(kViewHeightSizable);

struct Flipped : View {
    using View::View;
    bool isFlipped() const override { return true; }
};

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

template <typename W>
class ToolbarWindowTest : public ::testing::Test {
protected:
    testing::ScriptedPort port;
    std::unique_ptr<W> owner = std::make_unique<W>(Rect{{50, 60}, {300, 200}});
    View* keys = nullptr;
    Witness* strip = nullptr;

    // A content view with a part that stretches with it.
    template <typename Content = View>
    std::unique_ptr<View> content() {
        auto made = std::make_unique<Content>(Rect{{}, {300, 200}});
        keys = &made->addSubview(std::make_unique<View>(Rect{{10, 20}, {280, 160}}));
        keys->setAutoresizingMask(kStretches);
        return made;
    }
    void SetUp() override {
        owner->setContentView(content());
        auto made = std::make_unique<Witness>(Rect{{}, {201, 30}});
        strip = made.get();
        owner->setToolbarView(std::move(made));
    }
};

using Windows = ::testing::Types<DfKeyboardWindow, DfKeyboardPanel>;
TYPED_TEST_SUITE(ToolbarWindowTest, Windows);

TYPED_TEST(ToolbarWindowTest, ComesAndGoesWithoutStretchingAnything) {
    auto& window = *this->owner;
    window.setMinSize({100, 80});
    window.setMaxSize({900, 700});
    testing::RecordingWindow& surface = *this->port.lastWindow;
    window.hideToolbar();  // is hidden
    EXPECT_TRUE(surface.frames.empty());
    for (int round = 0; round < 3; ++round) {
        window.showToolbar();
        window.showToolbar();
        EXPECT_TRUE(window.toolbarVisible());
        EXPECT_EQ(window.frame(), (Rect{{50, 60}, {300, 230}}));
        EXPECT_EQ(window.frameWithoutToolBar(), (Rect{{50, 60}, {300, 200}}));
        EXPECT_EQ(surface.minimum, (Size{100, 110}));
        EXPECT_EQ(surface.maximum, (Size{900, 730}));
        EXPECT_EQ(this->strip->superview(), window.contentView());
        EXPECT_EQ(this->strip->frame(), (Rect{{49, 200}, {201, 30}}));
        EXPECT_EQ(this->keys->frame(), (Rect{{10, 20}, {280, 160}}));
        EXPECT_EQ(this->keys->autoresizingMask(), kStretches);
        window.toggleToolbar();
        EXPECT_EQ(window.frame(), (Rect{{50, 60}, {300, 200}}));
        EXPECT_EQ(window.frameWithoutToolBar(), window.frame());
        EXPECT_EQ(window.minSize(), (Size{100, 80}));
        EXPECT_EQ(window.maxSize(), (Size{900, 700}));
        EXPECT_EQ(this->strip->superview(), nullptr);
        EXPECT_EQ(window.toolbarView(), this->strip);
        EXPECT_EQ(this->keys->frame(), (Rect{{10, 20}, {280, 160}}));
    }
}

TYPED_TEST(ToolbarWindowTest, LimitsSpeakOfTheContentAndTheStripStaysOnTop) {
    auto& window = *this->owner;
    window.showToolbar();
    window.setMinSize({120, 90});
    EXPECT_EQ(this->port.lastWindow->minimum, (Size{120, 120}));
    window.setMaxSize({600, 400});
    EXPECT_EQ(this->port.lastWindow->maximum, (Size{600, 430}));
    window.setFrame({{50, 60}, {800, 330}});
    EXPECT_EQ(this->strip->frame(), (Rect{{199, 300}, {201, 30}}));
    EXPECT_EQ(this->keys->frame(), (Rect{{10, 20}, {580, 260}}));
    this->strip->setAutoresizingMask(kStretches);
    window.frameDidChange({{0, 0}, {500, 130}});  // by the user
    EXPECT_EQ(this->strip->frame(), (Rect{{0, 100}, {500, 30}}));
    window.setMinSize({});
    window.setFrame({{}, {100, 10}});
    EXPECT_EQ(window.frame().size.height, 30.0F);
    window.hideToolbar();
    // A limit that was set lately holds now, and what it changes goes to the content.
    window.setFrame({{}, {300, 200}});
    window.setMinSize({400, 250});
    const Size before = this->keys->frame().size;
    window.showToolbar();
    EXPECT_EQ(window.frame().size, (Size{400, 280}));
    EXPECT_EQ(this->keys->frame().size, (Size{before.width + 100, before.height + 50}));
}

TYPED_TEST(ToolbarWindowTest, WhereYPointsDownTheContentMakesRoom) {
    auto& window = *this->owner;
    window.setContentView(this->template content<Flipped>());
    window.df_addToolbarWidget();
    window.showToolbar();
    EXPECT_EQ(this->keys->frame(), (Rect{{10, 50}, {280, 160}}));
    EXPECT_EQ(this->strip->frame(), (Rect{{49, 0}, {201, 30}}));
    EXPECT_EQ(window.toolbarButton()->frame(), (Rect{{260, 3}, {28, 24}}));
    window.hideToolbar();
    EXPECT_EQ(this->keys->frame(), (Rect{{10, 20}, {280, 160}}));
}

TYPED_TEST(ToolbarWindowTest, TheStripMovesOverToANewContent) {
    auto& window = *this->owner;
    window.df_addToolbarWidget();
    window.showToolbar();
    Button* const button = window.toolbarButton();
    window.setContentView(this->content());
    EXPECT_EQ(this->keys->frame(), (Rect{{10, 20}, {280, 160}}));
    EXPECT_EQ(this->strip->superview(), window.contentView());
    EXPECT_EQ(button->superview(), window.contentView());
    window.setContentView(nullptr);
    EXPECT_EQ(window.toolbarView(), this->strip);
    window.toggleToolbar();
    window.toggleToolbar();
    window.setContentView(this->template content<Flipped>());
    EXPECT_EQ(this->keys->frame(), (Rect{{10, 50}, {280, 160}}));
    EXPECT_EQ(this->strip->frame().minY(), 0.0F);
    auto other = std::make_unique<View>(Rect{{}, {100, 20}});
    View* const added = other.get();
    window.setToolbarView(std::move(other));
    EXPECT_EQ(added->frame(), (Rect{{100, 5}, {100, 20}}));
    window.setToolbarView(nullptr);
    EXPECT_EQ(window.toolbarView(), nullptr);
}

TYPED_TEST(ToolbarWindowTest, TheButtonInTheCornerTogglesAndShowsIt) {
    auto& window = *this->owner;
    window.df_addToolbarWidget();
    window.df_addToolbarWidget();
    Button* const button = window.toolbarButton();
    ASSERT_NE(button, nullptr);
    EXPECT_EQ(window.contentView()->subviews().size(), 2U);
    EXPECT_EQ(button->frame(), (Rect{{260, 173}, {28, 24}}));
    EXPECT_FALSE(button->mouseDownCanMoveWindow());
    button->performClick();
    EXPECT_TRUE(window.toolbarVisible());
    EXPECT_TRUE(button->isOn());
    EXPECT_EQ(button->frame(), (Rect{{260, 203}, {28, 24}})) << "where it was on screen";
    this->strip->setAutoresizingMask(kStretches);
    window.setFrame({{50, 60}, {320, 230}});
    EXPECT_EQ(window.contentView()->hitTest({290, 215}), button) << "and not the strip under it";
    window.hideToolbar();
    EXPECT_FALSE(button->isOn());
}

TYPED_TEST(ToolbarWindowTest, SurvivesItsDeletionInEachCallback) {
    using W = TypeParam;
    const std::pair<bool, std::function<void(W&)>> acts[] = {
        // whether the strip is shown before, and what is done
        {false, [](W& window) { window.showToolbar(); }},
        {true, [](W& window) { window.hideToolbar(); }},
        {true, [](W& window) { window.setToolbarView(nullptr); }},
        {true, [this](W& window) { window.setContentView(this->content()); }},
        {true,
         [](W& window) {
             window.setFrame({{}, {700, 500}});
         }},
        {false, [](W& window) { window.toolbarButton()->performClick(); }},
    };
    // Each calls out a number of times, each of which may be the last.
    for (const auto& [isShown, act] : acts) {
        for (int last = 0;; ++last) {
            this->owner = std::make_unique<W>(Rect{{50, 60}, {300, 200}});
            this->SetUp();
            this->owner->df_addToolbarWidget();
            if (isShown) this->owner->showToolbar();
            Witness& witness = this->owner->contentView()->addSubview(
                std::make_unique<Witness>(Rect{{}, {300, 200}}));
            witness.setAutoresizingMask(kStretches);
            this->strip->setAutoresizingMask(kStretches);
            int calls = 0;
            this->strip->callback = witness.callback = [&] {
                if (calls++ == last) Application::current().discard(std::move(this->owner));
            };
            const WeakPointer<W> alive(this->owner.get());
            act(*this->owner);
            const bool isOver = alive.get() != nullptr;
            this->owner.reset();
            if (isOver) break;
            ASSERT_LT(last, 30);
        }
    }
}

TEST(KeyboardPanel, IsMiniaturizedOnlyFromTheScreen) {
    const testing::ScriptedPort port;
    DfKeyboardPanel panel(Rect{{}, {300, 200}});
    EXPECT_TRUE(panel.isPanel());
    panel.performMiniaturize();
    EXPECT_FALSE(port.lastWindow->isMiniaturized);
    panel.visibilityDidChange(true);
    panel.performMiniaturize();
    EXPECT_TRUE(port.lastWindow->isMiniaturized);
}

}  // namespace
}  // namespace veltra
