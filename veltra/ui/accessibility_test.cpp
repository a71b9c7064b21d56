// SPDX-License-Identifier: MIT
#include "veltra/ui/accessibility.h"

#include "veltra/ui/control.h"
#include "veltra/ui/testing/scripted_port.h"

namespace veltra::testing {
namespace {

using ::testing::ElementsAre;

struct Named final : View {
    using View::View;
    AccessibilityRole accessibilityRole() const override { return AccessibilityRole::Group; }
};

TEST(Accessibility, FindsOnlyWhatCanBeSeen) {
    ScriptedPort port;
    Shown<View> host(Rect{{}, {100, 100}});
    View& row = host.view.addSubview(
        std::make_unique<View>(Rect{{0, 0}, {50, 100}}));  // ignored, and cuts off
    Named& seen = row.addSubview(std::make_unique<Named>(Rect{{10, 10}, {20, 20}}));
    Named& cut = row.addSubview(std::make_unique<Named>(Rect{{40, 10}, {40, 20}}));
    Named& out = row.addSubview(std::make_unique<Named>(Rect{{60, 50}, {20, 20}}));
    AccessibilityElement& root = host.view;
    EXPECT_THAT(shownAccessibilityChildren(root), ElementsAre(&seen, &cut, &out));
    EXPECT_EQ(accessibilityElementAt(root, {15, 15}), &seen);
    EXPECT_EQ(accessibilityElementAt(root, {45, 15}), &cut);
    EXPECT_EQ(accessibilityElementAt(root, {55, 15}), &root);
    EXPECT_EQ(accessibilityElementAt(root, {65, 55}), &root);
    EXPECT_EQ(accessibilityVisibleFrameInWindow(cut), (Rect{{40, 10}, {10, 20}}));
    EXPECT_EQ(accessibilityFrameInWindow(out), (Rect{{60, 50}, {20, 20}}));
    EXPECT_TRUE(accessibilityVisibleFrameInWindow(out).isEmpty());
}

TEST(Accessibility, TellsNamesAndHelp) {
    ScriptedPort port;
    Shown<Control> host(Rect{{}, {100, 100}}, std::make_unique<Cell>("x"));
    host.view.setAccessibilityName("gain");
    host.view.setAccessibilityName("gain");
    EXPECT_THAT(port.notifications[AccessibilityNotification::NameChanged],
                ElementsAre(&host.view));
    host.view.setAccessibilityHelp("how loud it is");
    EXPECT_EQ(host.view.accessibilityName() + host.view.accessibilityHelp(), "gainhow loud it is");
}

}  // namespace
}  // namespace veltra::testing
