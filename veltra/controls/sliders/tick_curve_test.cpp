// SPDX-License-Identifier: MIT
#include "veltra/controls/sliders/tick_curve.h"

#include "veltra/base/testing/prelude.h"

namespace veltra {
namespace {

TEST(TickCurves, HaveTheirMarksAndAreMirrorImagesOfOneAnother) {
    const double low[] = {0.0, 7.7734375, 19.375, 44.6484375, 100.0};
    const double high[] = {0.0, 55.3515625, 80.625, 92.2265625, 100.0};
    for (std::int32_t i = 0; i < 5; ++i) {
        EXPECT_DOUBLE_EQ(tickCurveValue(TickCurve::Even, i, 5, 0, 100), 25.0 * i);
        EXPECT_DOUBLE_EQ(tickCurveValue(TickCurve::Low, i, 5, 0, 100), low[i]);
        EXPECT_DOUBLE_EQ(tickCurveValue(TickCurve::High, i, 5, 0, 100), high[i]);
    }
    for (std::int32_t count = 2; count < 70; ++count) {
        for (const TickCurve curve : {TickCurve::Even, TickCurve::Low, TickCurve::High}) {
            EXPECT_EQ(tickCurveValue(curve, -1, count, -0.3, 0.7), -0.3);
            EXPECT_EQ(tickCurveValue(curve, count, count, -0.3, 0.7), 0.7);
            for (std::int32_t i = 1; i < count; ++i)
                EXPECT_LT(tickCurveValue(curve, i - 1, count, 1, 2),
                          tickCurveValue(curve, i, count, 1, 2));
        }
    }
    EXPECT_EQ(tickCurveValue(TickCurve::Low, 3, 1, 5, 9), 5.0);
    EXPECT_EQ(tickCurveValue(TickCurve::High, 0, 0, 5, 9), 5.0);
}

TEST(TickCurves, FindTheMarkOfALinearValueAndBack) {
    struct Case {
        double value;
        std::int32_t count, mark;
    };
    const Case cases[] = {{1000, 5, 4}, {-3, 5, 0},   {NAN, 5, 0},     {12.4, 5, 0}, {12.5, 5, 1},
                          {37.5, 5, 2}, {50, 5, 2},   {50, 1, 0},      {50, 0, 0},   {50, -4, 0},
                          {50, 2, 1},   {49.9, 2, 0}, {INFINITY, 3, 2}};
    for (const auto& [value, count, mark] : cases)
        EXPECT_EQ(tickOfLinearValue(value, count, 0, 100), mark) << value << " of " << count;
    for (std::int32_t count = 2; count < 300; ++count) {
        for (std::int32_t i = 0; i < count; ++i)
            EXPECT_EQ(tickOfLinearValue(linearValueOfTick(i, count, -7, 0.1), count, -7, 0.1), i);
    }
    EXPECT_EQ(linearValueOfTick(1, 5, 0, 100, true), 75.0);
    EXPECT_EQ(tickOfLinearValue(3, 5, 3, 3), 0);
    EXPECT_EQ(tickOfLinearValue(1e308, 5, -1e308, 1e308), 0);
    EXPECT_EQ(mirroredValue(2, 1, 10), 9.0);
}

}  // namespace
}  // namespace veltra
