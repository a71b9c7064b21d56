// SPDX-License-Identifier: MIT
#include "veltra/ui/view.h"

#include "veltra/ui/canvas.h"
#include "veltra/ui/testing/scripted_port.h"

namespace veltra::testing {
namespace {

using ::testing::ElementsAre;

// Draws what it is asked for, takes keys, and scrolls its subviews where it may.
struct Spot final : View {
    using View::View;
    bool scrolls = false;
    void drawRect(Canvas& canvas, const Rect& dirty) override { canvas.fillRect(dirty, kBlack); }
    bool acceptsFirstResponder() const override { return true; }
    bool scrollRectToVisible(const Rect& rect) override {
        if (!scrolls) return View::scrollRectToVisible(rect);
        const float by = std::max(rect.maxX() - bounds().maxX(), std::min(rect.minX(), 0.0F));
        for (const auto& view : subviews())
            view->setFrameOrigin(view->frame().origin - Point{by, 0});
        return by != 0.0F;
    }
};

TEST(ViewTree, ConvertsAndResizesThroughEveryMixOfDirections) {
    const ScriptedPort port;
    Shown<View> host(Rect{{}, {200, 100}});
    View* const flipped =
        &host.view.addSubview(std::make_unique<Flipped<View>>(Rect{{50, 20}, {40, 60}}));
    View& inner = flipped->addSubview(std::make_unique<View>(Rect{{5, 10}, {20, 30}}));
    inner.setAutoresizingMask(kViewWidthSizable | kViewMinYMargin);
    flipped->setAutoresizingMask(kViewWidthSizable | kViewHeightSizable);
    // The inner view's lower left corner: 40 below the top of its superview, which is at 80.
    EXPECT_EQ(inner.convertPointToView({0, 0}, nullptr), (Point{55, 40}));
    EXPECT_EQ(inner.convertPointFromView({0, 0}, flipped), (Point{-5, 40}));
    EXPECT_EQ(inner.convertRectToView({{2, 3}, {4, 5}}, flipped), (Rect{{7, 32}, {4, 5}}));
    EXPECT_EQ(host.view.hitTest({56, 41}), &inner);
    host.window.frameDidChange({{}, {240, 150}});
    EXPECT_EQ(flipped->frame(), (Rect{{50, 20}, {80, 110}})) << "shares go to what gives";
    EXPECT_EQ(inner.frame(), (Rect{{5, 60}, {60, 30}}));
}

TEST(ViewTree, DrawsExactlyWhatIsInvalidAndSeen) {
    const ScriptedPort port;
    Shown<View> host(Rect{{}, {100, 100}});
    View& left = host.view.addSubview(std::make_unique<Spot>(Rect{{0, 0}, {50, 50}}));
    View& right = host.view.addSubview(std::make_unique<Spot>(Rect{{50, 0}, {50, 50}}));
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

struct Cover final : View {
    using View::View;
    Rect opaque;
    void drawRect(Canvas& canvas, const Rect& dirty) override { canvas.fillRect(dirty, kWhite); }
    Rect opaqueRect() const override { return opaque; }
};

TEST(ViewTree, DrawsNothingBeneathWhatAViewCovers) {
    const ScriptedPort port;
    HostedView host(std::make_unique<Spot>(Rect{{}, {100, 100}}));
    View& root = *host.window.contentView();
    root.addSubview(std::make_unique<Spot>(Rect{{0, 0}, {60, 60}}));
    View& box = root.addSubview(std::make_unique<Flipped<View>>(Rect{{10, 10}, {40, 40}}));
    Cover& cover = box.addSubview(std::make_unique<Cover>(Rect{{0, 0}, {50, 20}}));
    cover.opaque = {{0, 0}, {50, 10}};
    View& above = root.addSubview(std::make_unique<Spot>(Rect{{45, 0}, {30, 90}}));
    const auto drawn = [&](const Rect& rect) {
        host.port.invalid.clear();
        host.window.invalidate(rect);
        return host.display().size();
    };
    EXPECT_EQ(drawn({{20, 32}, {5, 5}}), 1U) << "the cover alone";
    EXPECT_EQ(drawn({{20, 38}, {5, 5}}), 3U) << "half of it is not covered: root, spot, cover";
    EXPECT_EQ(drawn({{48, 32}, {2, 5}}), 2U) << "what lies above is drawn, too";
    EXPECT_EQ(drawn({{52, 32}, {2, 5}}), 3U) << "the box cuts the cover off: root, spot, above";
    above.setHidden(true);
    cover.setHidden(true);
    EXPECT_EQ(drawn({{20, 32}, {5, 5}}), 2U) << "what is hidden covers nothing";
}

TEST(ViewTree, KnowsWhatCanBeSeenAndBringsItIntoSight) {
    const ScriptedPort port;
    Shown<Spot> host(Rect{{}, {100, 100}});
    Spot& row = host.view.addSubview(std::make_unique<Spot>(Rect{{10, 20}, {80, 40}}));
    Spot& cut = row.addSubview(std::make_unique<Spot>(Rect{{60, 10}, {40, 40}}));
    Spot& out = row.addSubview(std::make_unique<Spot>(Rect{{100, 0}, {40, 40}}));
    EXPECT_EQ(cut.visibleRect(), (Rect{{0, 0}, {20, 30}}));
    EXPECT_EQ(cut.visiblePartInWindow(cut.bounds()), (Rect{{70, 30}, {20, 30}}));
    EXPECT_TRUE(out.visibleRect().isEmpty());
    EXPECT_FALSE(host.window.giveKeyboardTo(out));
    EXPECT_EQ(host.window.firstResponder(), nullptr);
    row.scrolls = true;
    EXPECT_TRUE(host.window.giveKeyboardTo(out));
    EXPECT_EQ(out.visibleRect(), out.bounds());
    EXPECT_TRUE(out.hasKeyboard());
    host.window.keyStateDidChange(false);
    EXPECT_TRUE(out.isFirstResponder());
    EXPECT_FALSE(out.hasKeyboard());
    row.setHidden(true);
    EXPECT_TRUE(out.visibleRect().isEmpty());
}

TEST(ViewTree, TellsPlaceAndMovementOfThePointerAlongItsOwnAxes) {
    const ScriptedPort port;
    struct Grip final : View {
        Grip(const Rect& frame, bool flipped) : View(frame), isDown(flipped) {}
        const bool isDown;
        std::vector<Point> places, before;
        bool isFlipped() const override { return isDown; }
        void mouseDown(const Event& event) override { places.push_back(locationOf(event)); }
        void mouseDragged(const Event& event) override {
            before.push_back(locationOf(event) - movementOf(event));
            places.push_back(locationOf(event));
        }
    };
    for (const bool isFlipped : {false, true}) {
        Shown<View> host(Rect{{}, {100, 100}});
        auto& grip =
            host.view.addSubview(std::make_unique<Grip>(Rect{{10, 20}, {50, 50}}, isFlipped));
        host.press({20, 30});
        host.drag({25, 42});
        host.drag({21, 35});
        ASSERT_EQ(grip.places.size(), 3U);
        EXPECT_EQ(grip.places[1], (isFlipped ? Point{15, 28} : Point{15, 22}));
        EXPECT_THAT(grip.before, ElementsAre(grip.places[0], grip.places[1]));
    }
}

TEST(ViewTree, PutsSubviewsWhereTheyAreWanted) {
    const ScriptedPort port;
    Shown<View> host(Rect{{}, {100, 100}});
    const auto make = [] { return std::make_unique<Spot>(Rect{{}, {10, 10}}); };
    View& top = host.view.addSubview(make());
    View& low = host.view.insertSubview(make(), 0);
    View& middle = host.view.insertSubview(make(), 1);
    auto made = make();
    const View* const replaced = made.get();
    const auto taken = host.view.replaceSubview(middle, std::move(made));
    EXPECT_EQ(taken.get(), &middle);
    EXPECT_EQ(taken->window(), nullptr);
    EXPECT_EQ(host.view.hitTest({5, 5}), &top);
    EXPECT_EQ(host.view.replaceSubview(middle, make()), nullptr) << "it is no subview any more";
    std::vector<const View*> order;
    for (const auto& view : host.view.subviews())
        order.push_back(view.get());
    EXPECT_THAT(order, ElementsAre(&low, replaced, &top));
}

}  // namespace
}  // namespace veltra::testing
