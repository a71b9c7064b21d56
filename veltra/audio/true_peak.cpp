// SPDX-License-Identifier: MIT
#include "veltra/audio/true_peak.h"

#include "veltra/audio/level_tap.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace veltra {

namespace {

constexpr std::size_t kChunk = 256;  // samples that are filtered at a time
constexpr std::size_t kLanes = 4;

// The taps: a sinc under a Kaiser window (beta 4), with the sum 1 for each value. Those at a
// quarter and at three quarters of the way are each other's mirror: the sum and the difference of
// an even and an odd part, which take the sums and the differences of pairs of samples.
struct Taps {
    float middle;  // of the value halfway
    float even;    // of the other two
    float odd;
};
constexpr Taps kTapsOfPair[] = {
    // a pair a row, the outermost first
    {-0.008989659F, -0.006501667F, 0.001798140F}, {0.023137432F, 0.016580825F, -0.003326422F},
    {-0.048347449F, -0.034567219F, 0.005842533F}, {0.093632672F, 0.067125656F, -0.010987554F},
    {-0.190990412F, -0.139258988F, 0.028182507F}, {0.631557416F, 0.596621393F, -0.303664117F},
};

float limited(float sample) noexcept {
    const float clamped = std::clamp(sample, -kLargestLevel, kLargestLevel);
    return clamped == clamped ? clamped : 0.0F;  // NaN
}

// A sample, or several side by side: a type that the compiler computes with on every processor.
// Passed by reference, for which no processor needs registers of that size.
using Floats [[gnu::vector_size(kLanes * sizeof(float))]] = float;

template <typename Values>
void load(Values& values, const float* samples) noexcept {
    std::memcpy(&values, samples, sizeof values);
}

template <typename Values>
void makePositive(Values& values) noexcept {
    values = values < 0.0F ? -values : values;
}

template <typename Values>
void raise(Values& peaks, const Values& values) noexcept {
    peaks = peaks > values ? peaks : values;
}

// By the highest at and before each of the samples from `newest` on; there are eleven before it.
template <typename Values>
void raiseToHighest(Values& peaks, const float* newest) noexcept {
    const float* const oldest = newest - 11;
    Values middle{};
    Values even{};
    Values odd{};
    Values late{};
    Values early{};
    for (std::ptrdiff_t pair = 0; pair < std::ssize(kTapsOfPair); ++pair) {
        const Taps& taps = kTapsOfPair[pair];
        load(late, newest - pair);
        load(early, oldest + pair);
        middle += taps.middle * (late + early);
        even += taps.even * (late + early);
        odd += taps.odd * (late - early);
    }
    load(late, newest);
    for (Values* const values : {&middle, &even, &odd, &late})
        makePositive(*values);
    even += odd;  // the higher of the sum and the difference
    raise(peaks, middle);
    raise(peaks, even);
    raise(peaks, late);
}

}  // namespace

float TruePeak::add(const float* samples, std::size_t frames, std::size_t stride) noexcept {
    if (samples == nullptr) return 0.0F;
    std::array<float, kBefore + kChunk> line{};
    Floats peaks{};
    float peak = 0.0F;  // of what is left over from groups of four
    while (frames > 0) {
        const std::size_t count = std::min(frames, kChunk);
        std::copy(m_before.begin(), m_before.end(), line.begin());
        float* const newest = line.data() + kBefore;
        for (std::size_t i = 0; i < count; ++i)
            newest[i] = limited(samples[i * stride]);
        std::size_t i = 0;
        for (; i + kLanes <= count; i += kLanes)
            raiseToHighest(peaks, newest + i);
        for (; i < count; ++i)
            raiseToHighest(peak, newest + i);
        std::copy_n(line.data() + count, kBefore, m_before.begin());
        samples += count * stride;
        frames -= count;
    }
    for (std::size_t lane = 0; lane < kLanes; ++lane)
        peak = std::max(peak, peaks[lane]);
    return peak;
}

}  // namespace veltra
