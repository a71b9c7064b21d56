// SPDX-License-Identifier: MIT
#include "veltra/ui/canvas.h"

#include "veltra/ui/testing/scripted_port.h"

namespace veltra::testing {
namespace {

// A view 20 points high, 5 from the left and 30 from the top of the surface.
constexpr Rect kPlace{{5, 30}, {40, 20}};

TEST(Drawing, GoesByTheDirectionOfTheViewAndStandsUpright) {
    const ScriptedPort port;
    for (const bool isFlipped : {true, false}) {
        RecordingCanvas surface;
        Canvas canvas(surface);
        const RecordedImage image(8, 6, 1.0F);
        const StyledText text{"ab", Font::systemFont(8.0F), kBlack};  // 10 points high
        const float y = isFlipped ? 2.0F : 12.0F;  // of something 6 high, 2 below the top
        {
            const Canvas::StateScope scope(canvas);
            canvas.enter(kPlace, isFlipped);
            canvas.fillRect({{1, y}, {8, 6}}, kBlack);
            canvas.fillPath(Path::rect({{1, y}, {8, 6}}), kBlack);
            canvas.drawImage(image, {1, isFlipped ? 2.0F : 18.0F});
            canvas.drawText(text, {{0, 0}, {40, 20}});
            canvas.drawText(text, {{0, 0}, {40, 20}}, TextPlacement::Top);
        }
        canvas.fillRect({{1, 2}, {8, 6}}, kBlack);
        ASSERT_EQ(surface.calls.size(), 6U);
        const Rect kExpected{{6, 32}, {8, 6}};
        for (int i = 0; i < 3; ++i) {
            EXPECT_EQ(surface.calls[static_cast<std::size_t>(i)].rect, kExpected) << i;
            EXPECT_EQ(surface.calls[static_cast<std::size_t>(i)].clip, kPlace);
        }
        EXPECT_EQ(surface.calls[3].rect, kPlace);
        EXPECT_EQ(surface.calls[4].rect, (Rect{{5, 30}, {40, 10}})) << "from the top";
        EXPECT_EQ(surface.calls[5].rect, (Rect{{1, 2}, {8, 6}}));
    }
}

TEST(Drawing, CutsImagesTogetherWithTheirPlaceAndAlignsToThePixels) {
    RecordingCanvas surface(2.0F);
    Canvas canvas(surface);
    const RecordedImage image(20, 10, 1.0F);
    canvas.drawImage(image, {{-10, 0}, {40, 10}}, {{100, 50}, {80, 20}});
    ASSERT_EQ(surface.calls.size(), 1U);
    EXPECT_EQ(surface.calls[0].source, (Rect{{0, 0}, {20, 10}}));
    EXPECT_EQ(surface.calls[0].rect, (Rect{{120, 50}, {40, 20}}));
    canvas.drawImage(image, {{30, 0}, {5, 5}}, {{0, 0}, {5, 5}});
    canvas.fillRect({{0, 0}, {0, 5}}, kBlack);
    canvas.drawText({}, {{0, 0}, {5, 5}});
    EXPECT_EQ(surface.calls.size(), 1U) << "nothing to see";
    canvas.enter({{0.25F, 0}, {50, 50}}, false);
    EXPECT_EQ(canvas.alignedToDevice({{1, 1.3F}, {2, 2}}), (Rect{{1.25F, 1.5F}, {2.0F, 2.0F}}));
}

}  // namespace
}  // namespace veltra::testing
