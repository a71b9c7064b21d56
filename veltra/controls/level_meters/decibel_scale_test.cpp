#include "veltra/controls/level_meters/decibel_scale.h"

#include <cmath>

#include <gtest/gtest.h>

namespace veltra {
namespace {

TEST(DecibelScaleTest, RunsThroughTheKnotsOfTheStandardAndBack) {
    const struct {
        double decibels;
        float position;
    } kRows[] = {{-70.0, 0.0F},    {-65.0, 0.0125F}, {-60.0, 0.025F}, {-50.0, 0.075F},
                 {-45.0, 0.1125F}, {-40.0, 0.15F},   {-30.0, 0.3F},   {-20.0, 0.5F},
                 {-9.0, 0.775F},   {-3.0, 0.925F},   {0.0, 1.0F},     {6.0, 1.15F}};
    for (const auto& row : kRows) {
        EXPECT_FLOAT_EQ(meterPositionForDecibels(row.decibels), row.position);
        EXPECT_NEAR(meterPositionForAmplitude(static_cast<float>(-std::pow(10, row.decibels / 20))),
                    row.position, 1e-6);
        if (row.position > 0.0F) {
            EXPECT_NEAR(decibelsForMeterPosition(row.position), row.decibels, 1e-4);
        }
    }
    const float nan = std::nanf("");
    for (const float silence : {0.0F, nan}) {
        EXPECT_EQ(decibelsForMeterPosition(silence), -INFINITY);
        EXPECT_EQ(meterPositionForAmplitude(silence), 0.0F);
    }
    EXPECT_EQ(meterPositionForDecibels(nan), 0.0F);
}

}  // namespace
}  // namespace veltra
