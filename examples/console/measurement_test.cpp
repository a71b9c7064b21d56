// SPDX-License-Identifier: MIT
#include "measurement.h"

#include "veltra/base/testing/prelude.h"

namespace veltra::console {
namespace {

TEST(Measurement, WhatIsNotFiniteIsCountedAndSilenced) {
    const float infinity = std::numeric_limits<float>::infinity();
    std::vector<float> samples(300, 0.5F);
    samples[3] = std::nanf("");
    samples[140] = -infinity;
    samples[299] = infinity;
    const Measurement measured = measure(samples.data(), samples.size(), 1.0F);
    EXPECT_EQ(measured.notFinite, 3U);
    EXPECT_EQ(measured.peak, 0.5F);
    EXPECT_EQ(measured.fullScale, 0U);
    EXPECT_DOUBLE_EQ(measured.sumOfSquares, 297 * 0.25);
    for (const std::size_t place : {3U, 140U, 299U})
        EXPECT_EQ(samples[place], 0.0F);

    samples.assign(20, 1e30F);  // finite, though its square as a float is not
    EXPECT_NEAR(measure(samples.data(), samples.size(), 1.0F).rms() / 1e30, 1.0, 1e-6);
}

}  // namespace
}  // namespace veltra::console
