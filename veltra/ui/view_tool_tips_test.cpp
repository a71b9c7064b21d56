// SPDX-License-Identifier: MIT
#include "veltra/ui/view_tool_tips.h"

#include "veltra/base/testing/prelude.h"
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

}  // namespace
}  // namespace veltra::testing
