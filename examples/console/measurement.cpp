// SPDX-License-Identifier: MIT
#include "measurement.h"

#include "lanes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

namespace veltra::console {

namespace {

// Squares are added as floats over a run only (32 a lane), then in double precision: as exact as
// doubles throughout to nine digits, at the price of floats.
constexpr std::size_t kRun = 512;

double squaresOfRun(const float* samples, Range& range) noexcept {
    std::array<Floats, kVectors> squares{};
    Range seen = range;  // a copy of its own stays in registers
    for (std::size_t start = 0; start < kRun; start += kLanes) {
        for (std::size_t i = 0; i < kVectors; ++i) {
            const Floats values = load(samples + start + i * kWidth);
            squares[i] += values * values;
            seen.show(i, values);
        }
    }
    range = seen;
    double sum = 0.0;
    for (std::size_t lane = 0; lane < kLanes; ++lane) {
        sum += static_cast<double>(squares[lane / kWidth][lane % kWidth]);
    }
    return sum;
}

std::uint64_t countFrom(const float* samples, std::size_t count, float magnitude) noexcept {
    std::uint64_t found = 0;
    for (std::size_t i = 0; i < count; ++i)
        found += std::fabs(samples[i]) >= magnitude ? 1U : 0U;
    return found;
}

// The careful way, for chunks in which a square is not finite: a NaN, an infinity, or a float so
// large that only a double holds its square.
Measurement measureCarefully(float* samples, std::size_t count, float fullScale) noexcept {
    Measurement result;
    result.samples = count;
    for (std::size_t i = 0; i < count; ++i) {
        if (!std::isfinite(samples[i])) {
            samples[i] = 0.0F;
            ++result.notFinite;
        }
        const float magnitude = std::fabs(samples[i]);
        result.sumOfSquares += static_cast<double>(magnitude) * static_cast<double>(magnitude);
        result.peak = std::max(result.peak, magnitude);
        if (magnitude >= fullScale) ++result.fullScale;
    }
    return result;
}

}  // namespace

double Measurement::rms() const noexcept {
    return samples == 0 ? 0.0 : std::sqrt(sumOfSquares / static_cast<double>(samples));
}

void Measurement::add(const Measurement& other) noexcept {
    samples += other.samples;
    fullScale += other.fullScale;
    notFinite += other.notFinite;
    sumOfSquares += other.sumOfSquares;
    peak = std::max(peak, other.peak);
}

float fullScaleMagnitude(int bits) noexcept {
    const int judged = std::clamp(bits, 2, 16);
    return 1.0F - std::ldexp(1.0F, 1 - judged);
}

Measurement measure(float* samples, std::size_t count, float fullScale) noexcept {
    Measurement result;
    result.samples = count;
    Range range;
    std::size_t done = 0;
    for (; done + kRun <= count; done += kRun) {
        result.sumOfSquares += squaresOfRun(samples + done, range);
    }
    if (done < count) {
        std::array<float, kRun> rest{};
        std::memcpy(rest.data(), samples + done, (count - done) * sizeof(float));
        result.sumOfSquares += squaresOfRun(rest.data(), range);
    }
    if (!std::isfinite(result.sumOfSquares)) return measureCarefully(samples, count, fullScale);

    result.peak = range.largestMagnitude();
    if (result.peak >= fullScale) result.fullScale = countFrom(samples, count, fullScale);
    return result;
}

double decibels(double amplitude) noexcept {
    return 20.0 * std::log10(amplitude);
}

}  // namespace veltra::console
