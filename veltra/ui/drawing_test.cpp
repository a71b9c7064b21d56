// SPDX-License-Identifier: MIT
#include "veltra/ui/drawing.h"

#include "veltra/base/testing/prelude.h"
#include "veltra/ui/testing/recording_canvas.h"

#include <gmock/gmock.h>

namespace veltra::testing {
namespace {

using What = RecordingCanvas::What;

TEST(Drawing, LinesAreNeverThinnerThanAPixel) {
    RecordingCanvas port(1.25F);
    EXPECT_FLOAT_EQ(deviceWidth(Canvas(port), 0.1F) * 1.25F, 1.0F);
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
