// SPDX-License-Identifier: MIT
#include "veltra/audio/loudness_meter.h"

#include "veltra/base/testing/prelude.h"

namespace veltra {
namespace {

#if defined(VELTRA_EBUR128)

constexpr double kRate = 48000.0;
constexpr double kPi = 3.14159265358979323846;

struct Part {
    double seconds;
    double decibels;  // peak of the sine, relative to full scale
};

// A sine of 1 kHz in the first two of `channels` channels, in blocks of odd lengths.
void play(LoudnessMeter& meter, std::span<const Part> parts, std::size_t channels = 2) {
    std::vector<float> block(777 * channels);
    double phase = 0.0;
    for (const Part& part : parts) {
        const double amplitude = std::pow(10.0, part.decibels / 20.0);
        for (auto left = static_cast<std::size_t>(part.seconds * kRate); left > 0;) {
            const std::size_t frames = std::min<std::size_t>(left, 777);
            for (std::size_t i = 0; i < frames; ++i) {
                const auto sample = static_cast<float>(amplitude * std::sin(phase));
                phase += 2.0 * kPi * 1000.0 / kRate;
                block[i * channels] = block[i * channels + 1] = sample;
            }
            meter.add(block.data(), frames);
            left -= frames;
        }
    }
}

// The cases that EBU Tech 3341 asks of every meter, with its tolerances.
TEST(LoudnessMeterTest, MeetsTheCasesOfTheStandard) {
    constexpr double kAny = 1e9;
    const struct {
        std::vector<Part> parts;
        int rounds;
        double momentary, shortTerm, integrated;
    } kCases[] = {
        {{{20.0, -23.0}}, 1, -23.0, -23.0, -23.0},
        {{{10.0, -72.0}, {10.0, -36.0}, {60.0, -23.0}, {10.0, -36.0}, {10.0, -72.0}},
         1,
         -72.0,
         -72.0,
         -23.0},
        {{{1.34, -20.0}, {1.66, -30.0}}, 5, kAny, -23.0, kAny},
        {{{0.18, -20.0}, {0.22, -30.0}}, 25, -23.0, kAny, kAny},
    };
    for (const auto& row : kCases) {
        LoudnessMeter meter(48000, 2);
        ASSERT_TRUE(meter.isAvailable());
        for (int i = 0; i < row.rounds; ++i)
            play(meter, row.parts);
        const LoudnessReading reading = meter.read();
        for (const auto& [value, expected] : {std::pair(reading.momentary, row.momentary),
                                              {reading.shortTerm, row.shortTerm},
                                              {reading.integrated, row.integrated}}) {
            if (expected == kAny) continue;
            EXPECT_NEAR(value, expected, 0.1) << row.parts.size() << ' ' << row.rounds;
        }
    }
}

TEST(LoudnessMeterTest, FindsThePeakBetweenTheSamplesAndSkipsWhatIsNoNumber) {
    for (const double shift : {0.0, 45.0}) {  // degrees; a quarter of the rate, half of full scale
        LoudnessMeter meter(48000, 2);
        std::vector<float> samples(9600);  // in the second channel
        for (std::size_t i = 0; i < samples.size() / 2; ++i) {
            const double phase = 0.5 * kPi * static_cast<double>(i) + shift * kPi / 180.0;
            samples[2 * i + 1] = static_cast<float>(0.5 * std::sin(phase));
        }
        meter.add(samples.data(), samples.size() / 2);
        const double peak = meter.read().truePeak;
        EXPECT_TRUE(peak >= -6.02 - 0.4 && peak <= -6.02 + 0.2) << shift << ' ' << peak;
    }
    LoudnessMeter meter(48000, 2);
    const std::vector<float> odd(96'000, NAN);
    meter.add(odd.data(), odd.size() / 2);
    meter.add(nullptr, 100);
    EXPECT_EQ(meter.read().truePeak, -INFINITY);
    EXPECT_EQ(meter.read().integrated, -INFINITY);
    const Part kTone[] = {{1.0, -20.0}};
    play(meter, kTone);
    EXPECT_NEAR(meter.read().momentary, -20.0, 0.1);
}

TEST(LoudnessMeterTest, ChannelsCountAsTheirPlacesDo) {
    const Part kTone[] = {{5.0, -20.0}};
    const LoudnessChannel kSides[] = {LoudnessChannel::Surround, LoudnessChannel::Surround};
    const LoudnessChannel kNone[] = {LoudnessChannel::Unused, LoudnessChannel::Unused};
    LoudnessMeter front(48000, 6);
    LoudnessMeter sides(48000, kSides);
    LoudnessMeter none(48000, kNone);
    play(front, kTone, 6);
    play(sides, kTone);
    play(none, kTone);
    EXPECT_NEAR(front.read().integrated, -20.0, 0.1);
    EXPECT_NEAR(sides.read().integrated, -18.5, 0.1);
    EXPECT_EQ(none.read().integrated, -INFINITY);
    EXPECT_EQ(none.read().truePeak, -INFINITY);
}

TEST(LoudnessMeterTest, BeginsAgainWhileItMeasures) {
    const Part kLoud[] = {{2.0, -6.0}};
    const Part kQuiet[] = {{2.0, -30.0}};
    LoudnessMeter meter(48000, 2);
    std::atomic<bool> isDone{false};
    play(meter, kLoud);
    EXPECT_GT(meter.read().truePeak, -7.0);
    EXPECT_TRUE(meter.reset() && meter.reset());
    EXPECT_EQ(meter.read().truePeak, -INFINITY);
    std::thread audio([&] {
        play(meter, kQuiet);
        isDone = true;
    });
    while (!isDone) {
        EXPECT_LT(meter.read().truePeak, -25.0);  // above -30: a tone cut anywhere rings
        EXPECT_TRUE(meter.reset());
    }
    audio.join();
    play(meter, kQuiet);
    EXPECT_NEAR(meter.read().integrated, -30.0, 0.1);
}

TEST(LoudnessMeterTest, WhatItCannotMeasureIsNotAvailable) {
    const std::pair<std::uint32_t, std::size_t> kRows[] = {
        {48000, 0}, {48000, 65}, {48000, 1'000'000'000}, {0, 2}, {15, 2}, {3'000'000, 2}};
    for (const auto& [rate, channels] : kRows) {
        LoudnessMeter meter(rate, channels);
        EXPECT_FALSE(meter.isAvailable()) << rate << ' ' << channels;
        meter.add(nullptr, 0);
        EXPECT_TRUE(meter.reset());
    }
}

#else

TEST(LoudnessMeterTest, WithoutTheLibraryNothingIsMeasured) {
    LoudnessMeter meter(48000, 2);
    EXPECT_FALSE(meter.isAvailable());
    meter.add(std::vector<float>(48000, 0.5F).data(), 24000);
    EXPECT_EQ(meter.read().truePeak, -INFINITY);
}

#endif

}  // namespace
}  // namespace veltra
