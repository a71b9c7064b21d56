// SPDX-License-Identifier: MIT
#include "veltra/audio/level_tap.h"

#include "veltra/audio/levels.h"
#include "veltra/base/testing/prelude.h"

namespace veltra {
namespace {

TEST(LevelTapTest, MeasuresEverySampleAtEveryLengthAndStride) {
    std::mt19937 random(5);
    for (const std::size_t frames : {0U, 1U, 15U, 16U, 17U, 4096U, 4097U, 10'000U}) {
        for (const std::size_t stride : {1U, 2U, 7U}) {
            std::vector<float> samples(frames * stride, 9.0F);  // neighbours count nowhere
            double squares = 0.0;
            float peak = 0.0F;
            for (std::size_t i = 0; i < frames; ++i) {
                const float value = static_cast<float>(random() % 2001U) / 1000.0F - 1.0F;
                samples[i * stride] = value;
                squares += static_cast<double>(value) * static_cast<double>(value);
                peak = std::max(peak, std::fabs(value));
            }
            const LevelReading reading = LevelTap::measure(samples.data(), frames, stride);
            EXPECT_EQ(reading.frames, frames);
            EXPECT_EQ(reading.peak, peak);
            const double expected = frames > 0 ? squares / static_cast<double>(frames) : 0.0;
            EXPECT_NEAR(reading.meanSquare, expected, 2e-6) << frames << ' ' << stride;
        }
    }
    const float odd[] = {NAN, -INFINITY, 0.0F, -0.5F};
    EXPECT_EQ(LevelTap::measure(odd, 4).peak, kLargestLevel);
    EXPECT_EQ(LevelTap::measure(odd, 1).meanSquare, 0.0F);
    EXPECT_FLOAT_EQ(LevelTap::measure(odd + 2, 2).rms(), std::sqrt(0.125F));
    EXPECT_EQ(LevelTap::measure(nullptr, 4).frames, 0U);
    LevelTap tap;
    tap.add({NAN, INFINITY, 1});
    tap.add({INFINITY, NAN, 1});
    const LevelReading limited = tap.take();
    EXPECT_EQ(limited.peak, kLargestLevel);
    EXPECT_EQ(limited.meanSquare, kLargestLevel * kLargestLevel / 2);
}

// Each block has one level, its own length and a mean square of the length: what the reader adds up
// is what was written, and no reading mixes the peak of one block with the squares of another.
TEST(LevelTapTest, EverySampleIsInExactlyOneReadingHoweverTheThreadsRun) {
    constexpr std::uint64_t kBlocks = 20'000;
    LevelTap tap;
    std::atomic<bool> isDone{false};
    std::atomic<std::uint64_t> readings{0};
    std::uint64_t written = 0;
    std::thread audio([&] {
        for (std::uint64_t i = 1; i <= kBlocks; ++i) {
            const std::uint64_t frames = 1 + i % 31;
            const std::uint64_t seen = readings;
            tap.add({static_cast<float>(frames), static_cast<float>(frames), frames});
            while (i % 64 == 0 && readings == seen)  // or the reader comes too seldom to see much
                std::this_thread::yield();
            written += frames;
        }
        isDone = true;
    });
    std::uint64_t taken = 0;
    const auto take = [&] {
        const LevelReading reading = tap.take();
        if (reading.frames == 0) return false;
        taken += reading.frames;
        ++readings;
        EXPECT_LE(reading.meanSquare, reading.peak);
        EXPECT_TRUE(reading.peak >= 1.0F && reading.peak <= 31.0F);
        if (reading.frames <= 31) {  // may be one block, or a few small ones
            EXPECT_GE(static_cast<float>(reading.frames), reading.peak);
        }
        return true;
    };
    while (!isDone)
        take();
    audio.join();
    while (take()) {
    }
    EXPECT_EQ(taken, written);
}

TEST(LevelTapTest, SeveralBlocksMakeOneReadingWeightedByTheirLengths) {
    VLLevelTap* const tap = VLLevelTapCreate();
    ASSERT_NE(tap, nullptr);
    const float loud[] = {0.5F, -0.8F, 0.5F, -0.5F};
    const float quiet[] = {0.1F, 0.1F};
    for (int round = 0; round < 3; ++round) {
        VLLevelTapAdd(tap, loud, 2, 2);
        VLLevelTapAdd(tap, quiet, 2, 1);
        VLLevelTapAdd(tap, quiet, 0, 1);
        const VLLevelReading reading = VLLevelTapTake(tap);
        EXPECT_EQ(reading.frames, 4U);
        EXPECT_EQ(reading.peak, 0.5F);
        EXPECT_NEAR(reading.meanSquare, (0.25 * 2 + 0.01 * 2) / 4, 1e-7);
        EXPECT_EQ(VLLevelTapTake(tap).frames, 0U);
    }
    VLLevelTapDestroy(tap);
    VLLevelTapAdd(nullptr, loud, 4, 1);
    EXPECT_EQ(VLLevelTapTake(nullptr).frames, 0U);
}

TEST(LevelTapTest, TheAverageDoesNotDependOnHowTheSignalIsCut) {
    RmsAverage once(48000.0);
    RmsAverage often(48000.0);
    RmsAverage alone(48000.0, NAN);
    EXPECT_NEAR(once.add({1.0F, 0.5F, 14'400}), std::sqrt(0.5 * (1.0 - std::exp(-1.0))), 1e-6);
    for (int i = 0; i < 100; ++i)
        often.add({1.0F, 0.5F, 144});
    EXPECT_NEAR(often.rms(), once.rms(), 1e-6);
    EXPECT_EQ(once.add({1.0F, 1.0F, 0}), once.rms());
    EXPECT_EQ(alone.add({1.0F, 0.25F, 1}), 0.5F);
    once.reset();
    EXPECT_EQ(once.rms(), 0.0F);
}

}  // namespace
}  // namespace veltra
