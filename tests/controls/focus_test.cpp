// SPDX-License-Identifier: MIT
#include "on_pictures.h"
#include "veltra/ui/button.h"

namespace veltra::testing {
namespace {

// The ring is 2 points wide, 2 points away from the button, in whole pixels at every scale.
TEST(Pictures, FocusRingsAreSharpAtEveryScale) {
    for (const Setting& setting : settings()) {
        CardPicture picture({60, 40}, setting);
        picture.add<Button>(Rect{{10, 10}, {40, 20}}, "Stop");
        picture.window.keyboardArrives(true);
        // Along the middle of the height: the two sides of the ring.
        const auto ring = picture.draw().inRow(20.0F, theme(setting.appearance).accent);
        const auto width = static_cast<std::size_t>(std::round(2 * setting.scale - 0.01F));
        ASSERT_EQ(ring.size(), 2 * width) << setting.scale;
        EXPECT_EQ(ring.front(), std::lround(6 * setting.scale)) << setting.scale;
        EXPECT_EQ(ring.back() + 1, std::lround(54 * setting.scale)) << setting.scale;
    }
}

}  // namespace
}  // namespace veltra::testing
