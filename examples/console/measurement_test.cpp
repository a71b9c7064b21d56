#include "measurement.h"

#include "mixing.h"

#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include <gtest/gtest.h>

namespace veltra::console {
namespace {

TEST(Measurement, AndMixingAgreeWithPlainLoopsForEveryLength) {
    std::mt19937 random(7);
    std::uniform_real_distribution<float> amplitude(-1.0F, 1.0F);
    for (std::size_t length = 0; length < 600; ++length) {
        std::vector<float> samples(length);
        for (float& sample : samples)
            sample = amplitude(random);
        float peak = 0.0F;
        double squares = 0.0;
        std::uint64_t full = 0;
        for (const float sample : samples) {
            peak = std::max(peak, std::fabs(sample));
            squares += static_cast<double>(sample) * static_cast<double>(sample);
            full += std::fabs(sample) >= 0.9F ? 1U : 0U;
        }
        const Measurement measured = measure(samples.data(), length, 0.9F);
        EXPECT_EQ(measured.samples, length);
        EXPECT_EQ(measured.peak, peak);
        EXPECT_EQ(measured.fullScale, full);
        EXPECT_NEAR(measured.sumOfSquares, squares, squares * 1e-6);

        std::vector<float> mix(length, 0.25F);
        EXPECT_EQ(addToMix(mix.data(), samples.data(), length), peak);
        for (std::size_t i = 0; i < length; ++i)
            ASSERT_EQ(mix[i], samples[i] + 0.25F);
    }
}

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
