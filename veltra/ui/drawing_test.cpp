// SPDX-License-Identifier: MIT
#include "veltra/ui/drawing.h"

#include "veltra/base/testing/prelude.h"
#include "veltra/ui/testing/recording_canvas.h"

#include <gmock/gmock.h>

namespace veltra::testing {
namespace {

using What = RecordingCanvas::What;

TEST(Drawing, LinesAreWholePixelsInsideTheShapeAtEveryScale) {
    constexpr struct {
        float scale;
        float one, two;  // pixels of lines of 1 and 2 points
    } kRows[] = {{1.0F, 1, 2}, {1.25F, 1, 2}, {1.5F, 1, 3}, {1.75F, 2, 3}, {2.0F, 2, 4}};
    for (const auto& row : kRows) {
        RecordingCanvas port(row.scale);
        Canvas canvas(port);
        EXPECT_FLOAT_EQ(deviceWidth(canvas, 1.0F) * row.scale, row.one) << row.scale;
        EXPECT_FLOAT_EQ(deviceWidth(canvas, 2.0F) * row.scale, row.two) << row.scale;
        EXPECT_FLOAT_EQ(deviceWidth(canvas, 0.1F) * row.scale, 1.0F);
        const Rect shape{{3.1F, 4.2F}, {20.3F, 10.7F}};
        strokeRounded(canvas, shape, 4.0F, kBlack);
        const Rect outer = canvas.alignedToDevice(shape);
        const float half = row.one / row.scale / 2.0F;
        EXPECT_EQ(port.calls.back().rect, outer.inset(half, half)) << row.scale;
    }
}

TEST(Drawing, ShadowsFallDownwardsInBothDirections) {
    for (const bool isFlipped : {true, false}) {
        RecordingCanvas port;
        Canvas canvas(port);
        canvas.enter({{}, {100, 100}}, isFlipped);
        drawFloatingShadow(canvas, {{40, 40}, {20, 20}}, 6.0F, theme(Appearance::Dark));
        const auto layers = RecordingCanvas::only(What::FillPath, port.calls);
        ASSERT_EQ(layers.size(), 3U);
        const float alphas[] = {0.10F, 0.14F, 0.20F};
        for (std::size_t i = 0; i < 3; ++i) {
            const float reach = 6.0F - 2.0F * static_cast<float>(i);
            EXPECT_EQ(layers[i].rect,
                      (Rect{{40 - reach, 43 - reach}, {20 + 2 * reach, 20 + 2 * reach}}));
            EXPECT_FLOAT_EQ(layers[i].color.alpha, alphas[i]);
        }
    }
}

}  // namespace
}  // namespace veltra::testing
