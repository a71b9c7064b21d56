// SPDX-License-Identifier: MIT
#include "veltra/ui/tool_tip.h"

#include "veltra/ui/testing/scripted_port.h"
#include "veltra/ui/testing/tagged_tip.h"

namespace veltra::testing {
namespace {

TEST(ToolTips, GoWithTheirViewAndTheirText) {
    ScriptedPort port;
    TaggedTip source;
    Shown<View> host(Rect{{}, {100, 100}});
    ToolTipWindow& tip = ToolTipWindow::shared();
    const std::function<void(View&, View&)> ends[] = {
        [](View& outer, View&) { outer.removeFromSuperview(); },
        [](View&, View& inner) { inner.takeFromSuperview().reset(); },
        [](View& outer, View&) { outer.setHidden(true); },
        [&](View&, View&) { tip.closeToolTipWindow(); }};
    for (const auto& end : ends) {
        View& outer = host.view.addSubview(std::make_unique<View>(Rect{{10, 10}, {50, 50}}));
        View& inner = outer.addSubview(std::make_unique<View>(Rect{{5, 5}, {20, 20}}));
        tip.showToolTipWindowForView(inner, &source, 1, {2, 3});
        EXPECT_EQ(port.toolTip, "71");
        EXPECT_EQ(port.toolTipPlace, (Point{17, 18}));
        source.text = "8";
        tip.updateToolTipPosition(Point{4, 3}, inner);
        EXPECT_EQ(port.toolTip, "81");
        EXPECT_EQ(tip.shownIn(host.window)->around.center(), (Point{19, 18}));
        source.text = "7";
        end(outer, inner);
        EXPECT_FALSE(tip.isOpen());
        EXPECT_EQ(port.toolTip, "");
    }
    {
        Shown<View> dying(Rect{{}, {100, 100}});
        tip.showToolTipWindowForView(dying.view, &source, 1, {2, 3});
        EXPECT_EQ(port.toolTip, "71");
    }
    EXPECT_EQ(port.toolTip, "") << "its window is gone";
    View other({{}, {10, 10}});
    tip.showToolTipWindowForView(other, &source, 1, {2, 3});
    EXPECT_FALSE(tip.isOpen()) << "in no window";
}

}  // namespace
}  // namespace veltra::testing
