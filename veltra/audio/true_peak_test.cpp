// SPDX-License-Identifier: MIT
#include "veltra/audio/true_peak.h"

#include "veltra/audio/level_tap.h"
#include "veltra/audio/loudness_meter.h"
#include "veltra/base/testing/prelude.h"

namespace veltra {
namespace {

// By its series: the C library's has an instruction that emulators lack.
double sineOfTurns(double turns) {
    turns -= std::floor(turns + 0.5);
    if (std::abs(turns) > 0.25) turns = std::copysign(0.5, turns) - turns;
    const double x = 2.0 * M_PI * turns;
    double sum = x;
    double term = x;
    for (int k = 2; k < 20; k += 2)
        sum += term *= -x * x / (k * (k + 1));
    return sum;
}

std::vector<float> sine(double cycles, double phase, std::size_t frames = 4096) {
    std::vector<float> samples;
    for (std::size_t i = 0; i < frames; ++i) {
        const double fade = std::min(1.0, static_cast<double>(std::min(i, frames - i)) / 400.0);
        samples.push_back(
            static_cast<float>(fade * sineOfTurns(cycles * static_cast<double>(i) + phase)));
    }
    return samples;
}

double decibelsOf(double amplitude) {
    return 20.0 * std::log10(amplitude);
}

TEST(TruePeak, FindsWhatLiesBetweenSamples) {
    const struct {
        double cycles;  // a sample
        double low;     // decibels by which it may be too low
        double high;
    } kRows[] = {{0.01, 0.01, 0.01}, {0.1, 0.04, 0.07}, {0.25, 0.2, 0.07}, {0.4, 0.55, 0.1}};
    for (const auto& row : kRows) {
        for (int step = 0; step < 16; ++step) {
            TruePeak peak;
            const auto samples = sine(row.cycles, step / 16.0);
            const double found = decibelsOf(peak.add(samples.data(), samples.size()));
            EXPECT_GE(found, -row.low) << row.cycles << " at " << step;
            EXPECT_LE(found, row.high) << row.cycles << " at " << step;
        }
    }
    TruePeak peak;  // no sample above 0.7071
    const auto samples = sine(0.25, 0.125);
    EXPECT_NEAR(peak.add(samples.data(), samples.size()), 1.0F, 0.01F);
}

TEST(TruePeak, DoesNotDependOnBlocksAndStrides) {
    std::mt19937 random(7);
    std::vector<float> samples(1500);
    for (float& each : samples)
        each = static_cast<float>(random() % 2001) / 1000.0F - 1.0F;
    TruePeak whole;
    const float expected = whole.add(samples.data(), samples.size());
    for (const std::size_t block : {1U, 7U, 8U, 9U, 255U, 256U, 257U, 1024U}) {
        TruePeak apart;
        TruePeak strided;
        float found = 0.0F;
        float other = 0.0F;
        for (std::size_t i = 0; i < samples.size(); i += block) {
            const std::size_t count = std::min(block, samples.size() - i);
            std::vector<float> frames(3 * count);
            for (std::size_t k = 0; k < count; ++k)
                frames[3 * k] = samples[i + k];
            found = std::max(found, apart.add(&samples[i], count));
            other = std::max(other, strided.add(frames.data(), count, 3));
        }
        EXPECT_EQ(found, expected) << block;
        EXPECT_EQ(other, expected) << block;
    }
}

TEST(TruePeak, StaysFiniteAndKnowsWhatFollowsWhat) {
    TruePeak peak;
    const float odd[] = {NAN, INFINITY, -INFINITY, 1e30F};
    EXPECT_GE(peak.add(odd, 4), kLargestLevel);
    EXPECT_TRUE(std::isfinite(peak.add(odd, 4)));
    EXPECT_EQ(peak.add(nullptr, 5), 0.0F);
    peak.reset();
    EXPECT_EQ(peak.add(odd, 1), 0.0F);
    const float steps[] = {1.0F, 1.0F};
    EXPECT_EQ(peak.add(steps, 1), 1.0F);
    EXPECT_GT(peak.add(steps + 1, 1), 0.99F);
    EXPECT_EQ(peak.add(steps, 0), 0.0F);
}

TEST(TruePeak, AgreesWithTheMeterOfProgrammes) {
    LoudnessMeter probe(48000, 1);
    if (!probe.isAvailable()) GTEST_SKIP() << "built without libebur128";
    std::mt19937 random(3);
    // How slowly it moves, and decibels: filters differ where there is much near the highest pitch.
    const std::pair<double, double> kRows[] = {{0.2, 0.4}, {0.5, 0.2}, {0.9, 0.05}};
    for (const auto& [reach, tolerance] : kRows) {
        LoudnessMeter meter(48000, 1);
        TruePeak peak;
        std::vector<float> samples;
        double value = 0.0;
        for (int i = 0; i < 48000; ++i) {
            value += (1.0 - reach) * (static_cast<double>(random() % 2001) / 1000.0 - 1.0 - value);
            samples.push_back(static_cast<float>(value));
        }
        meter.add(samples.data(), samples.size());
        const double own = decibelsOf(peak.add(samples.data(), samples.size()));
        EXPECT_NEAR(own, meter.read().truePeak, tolerance) << reach;
    }
}

}  // namespace
}  // namespace veltra
