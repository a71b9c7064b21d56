// SPDX-License-Identifier: MIT
#include "on_pictures.h"
#include "veltra/ui/button.h"
#include "veltra/ui/theme.h"

namespace veltra::testing {
namespace {

// The ring is 2 points wide, 2 points away from the button, in whole pixels at every scale.
TEST(Pictures, FocusRingsAreSharpAtEveryScale) {
    for (const Setting& setting : settings()) {
        PictureWindow picture({60, 40}, setting.scale, setting.appearance);
        Window& window = picture.window();
        window.setContentView(std::make_unique<View>(Rect{{}, {60, 40}}));
        window.contentView()->addSubview(
            std::make_unique<Button>(Rect{{10, 10}, {40, 20}}, "Stop"));
        window.visibilityDidChange(true);
        window.keyStateDidChange(true);
        window.keyboardArrives(true);
        const Pixels pixels(picture.draw());
        const auto accent = rgbOf(theme(setting.appearance).accent);
        // Along the middle of the height: the two sides of the ring.
        std::vector<std::int32_t> ring;
        for (std::int32_t x = 0; x < pixels.width(); ++x) {
            if (pixels.rgbAt(x, pixels.height() / 2) == accent) ring.push_back(x);
        }
        const auto width = static_cast<std::size_t>(std::round(2 * setting.scale - 0.01F));
        ASSERT_EQ(ring.size(), 2 * width) << setting.scale;
        EXPECT_EQ(ring.front(), std::lround(6 * setting.scale)) << setting.scale;
        EXPECT_EQ(ring.back() + 1, std::lround(54 * setting.scale)) << setting.scale;
    }
}

}  // namespace
}  // namespace veltra::testing
