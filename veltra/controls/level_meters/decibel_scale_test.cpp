// SPDX-License-Identifier: MIT
#include "veltra/controls/level_meters/decibel_scale.h"

#include "veltra/base/testing/prelude.h"

namespace veltra {
namespace {

TEST(DecibelScaleTest, RunsThroughTheKnotsOfTheStandardAndBack) {
    const std::pair<double, float> kRows[] = {{-70.0, 0.0F},  {-65.0, 0.0125F}, {-50.0, 0.075F},
                                              {-40.0, 0.15F}, {-30.0, 0.3F},    {-20.0, 0.5F},
                                              {-9.0, 0.775F}, {0.0, 1.0F},      {6.0, 1.15F}};
    for (const auto& [decibels, position] : kRows) {
        EXPECT_FLOAT_EQ(meterPositionForDecibels(decibels), position);
        EXPECT_NEAR(meterPositionForAmplitude(static_cast<float>(-std::pow(10, decibels / 20))),
                    position, 1e-6);
        if (position > 0.0F) {
            EXPECT_NEAR(decibelsForMeterPosition(position), decibels, 1e-4);
        }
    }
    EXPECT_EQ(decibelsForMeterPosition(std::nanf("")), -INFINITY);
    EXPECT_EQ(meterPositionForAmplitude(std::nanf("")), 0.0F);
}

}  // namespace
}  // namespace veltra
