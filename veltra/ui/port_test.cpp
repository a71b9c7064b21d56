// SPDX-License-Identifier: MIT
#include "veltra/ui/port.h"

#include "veltra/base/testing/prelude.h"
#include "veltra/ui/image.h"
#include "veltra/ui/styled_text.h"
#include "veltra/ui/window.h"

namespace veltra::testing {
namespace {

TEST(WithoutAPort, TextIsMeasuredByItsCharactersAndNothingIsShownOrAwaited) {
    const std::pair<const char*, float> widths[] = {
        {"", 0.0F}, {"ab", 11.0F}, {"\u00DF\u20AC", 11.0F}, {"\U0001F3B5", 5.5F}};
    for (const auto& [text, width] : widths) {
        const Size size = StyledText{text, Font::systemFont(10.0F), kBlack}.size();
        EXPECT_FLOAT_EQ(size.width, width) << text;
        EXPECT_FLOAT_EQ(size.height, 12.0F);
    }
    Window window(Rect{{10, 10}, {100, 50}});
    window.makeKeyAndOrderFront();
    EXPECT_EQ(window.contentSize(), (Size{100, 50}));
    EXPECT_EQ(window.scale(), 1.0F);
    EXPECT_FALSE(UiPort::current().waitForEvent() || window.lockPointer(true));
    EXPECT_FALSE(UiPort::current().hasFontFamily("Any"));
    EXPECT_EQ(Image::drawn({5, 5}, 1.0F, [](Canvas&) { ADD_FAILURE(); }), nullptr);
    EXPECT_EQ(Image::load("picture.png"), nullptr);
}

}  // namespace
}  // namespace veltra::testing
