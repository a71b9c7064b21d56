// SPDX-License-Identifier: MIT
#include "veltra/ui/view_tool_tips.h"

#include "veltra/ui/testing/scripted_port.h"
#include "veltra/ui/testing/tagged_tip.h"

namespace veltra::testing {
namespace {

TEST(ToolTips, RestingOnesAreThoseAddedLast) {
    ViewToolTips tips;
    TaggedTip source;
    const auto low = tips.addToolTipRect({{0, 0}, {20, 20}}, "low");
    const auto high = tips.addToolTipRect({{10, 0}, {20, 20}}, &source, 3);
    EXPECT_EQ(tips.at({15, 5})->text, "73");
    EXPECT_EQ(tips.at({5, 5})->text, "low");
    for (const auto tag : {high, high + 99})
        tips.removeToolTip(tag);
    EXPECT_EQ(tips.at({15, 5})->text, "low");
    EXPECT_FALSE(tips.at({25, 5}));
    tips.removeToolTip(low);
    EXPECT_FALSE(tips.at({5, 5}));
}

TEST(ToolTips, RestingOnesMayGoWithTheirViewWhenTheyAreAsked) {
    struct Last final : Anchored, ToolTipSource {
        View* view = nullptr;
        std::string stringForTag(std::int32_t tag) override {
            if (view != nullptr) std::exchange(view, nullptr)->takeFromSuperview().reset();
            return tag == 1 ? "" : "9";
        }
    };
    const ScriptedPort port;
    Shown<View> host(Rect{{}, {50, 50}});
    host.view.toolTips().addToolTipRect({{}, {50, 50}}, "around");
    for (const std::int32_t tag : {1, 2}) {
        Last source;
        source.view = &host.view.addSubview(std::make_unique<View>(Rect{{}, {20, 20}}));
        source.view->toolTips().addToolTipRect({{}, {20, 20}}, &source, 1);
        source.view->toolTips().addToolTipRect({{}, {20, 20}}, &source, tag);
        EXPECT_FALSE(host.window.toolTipAt({5, 5}));
        EXPECT_EQ(host.window.toolTipAt({5, 5})->text, "around");
    }
}

}  // namespace
}  // namespace veltra::testing
