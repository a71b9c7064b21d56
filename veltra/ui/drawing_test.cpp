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
        EXPECT_EQ(layers.at(0).rect, (Rect{{34, 37}, {32, 32}}));
    }
}

}  // namespace
}  // namespace veltra::testing
