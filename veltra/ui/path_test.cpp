// SPDX-License-Identifier: MIT
#include "veltra/ui/path.h"

#include "veltra/base/testing/prelude.h"
#include "veltra/ui/testing/recording_canvas.h"

namespace veltra::testing {
namespace {

TEST(Paths, TouchTheSidesOfTheirRectangleAndTurnItsCorners) {
    const Rect rect{{3, 4}, {20, 10}};
    for (const float radius : {-1.0F, 0.0F, 2.0F, 5.0F, 99.0F}) {
        const Path path = Path::roundedRect(rect, radius);
        EXPECT_NEAR(RecordingCanvas::around(path).maxX(), rect.maxX(), 1e-3F);
        EXPECT_NEAR(RecordingCanvas::around(path).minY(), rect.minY(), 1e-3F);
        EXPECT_EQ(path.elements().size(), radius > 0.0F ? 10U : 5U);
        EXPECT_FLOAT_EQ(path.elements()[0].points[0].x, 3.0F + std::clamp(radius, 0.0F, 5.0F));
    }
    // Half-way round a quarter a circle is a radius away from its middle.
    const Path circle = Path::ellipse({{-10, -10}, {20, 20}});
    const Point* c = circle.elements()[1].points;
    const Point from = circle.elements()[0].points[0];
    const float x = (from.x + 3 * c[0].x + 3 * c[1].x + c[2].x) / 8;
    const float y = (from.y + 3 * c[0].y + 3 * c[1].y + c[2].y) / 8;
    EXPECT_NEAR(std::hypot(x, y), 10.0F, 0.01F);
    EXPECT_TRUE(Path::ellipse({}).isEmpty() && Path::rect({{1, 1}, {0, 5}}).isEmpty());
}

TEST(Paths, BeginWhereTheFirstLineOrCurveEnds) {
    Path path;
    path.close();
    EXPECT_TRUE(path.isEmpty());
    path.curveTo({1, 1}, {2, 2}, {3, 3});
    path.lineTo({4, 4});
    ASSERT_EQ(path.elements().size(), 2U);
    EXPECT_EQ(path.elements()[0].verb, Path::Verb::Move);
    EXPECT_EQ(path.elements()[0].points[0], (Point{3, 3}));
    EXPECT_EQ(path.elements()[1].verb, Path::Verb::Line);
}

}  // namespace
}  // namespace veltra::testing
