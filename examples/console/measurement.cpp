#include "measurement.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

namespace veltra::console {

namespace {

// Four vectors of four lanes at a time, written as such because the compiler may not reorder sums
// of floats by itself.
constexpr std::size_t kWidth = 4;
constexpr std::size_t kVectors = 4;
constexpr std::size_t kLanes = kWidth * kVectors;
using Floats [[gnu::vector_size(kWidth * sizeof(float))]] = float;
using Counts [[gnu::vector_size(kWidth * sizeof(std::int32_t))]] = std::int32_t;

// Squares are added as floats over a run only (eight a lane), then in double precision: as exact as
// doubles throughout to nine digits, at the price of floats.
constexpr std::size_t kRun = 128;

struct Lanes {
    std::array<Floats, kVectors> peak{};
    std::array<Counts, kVectors> fullScale{};  // counted downwards: true is -1
    std::array<double, kLanes> squares{};
};

Floats magnitudesAt(const float* samples) noexcept {
    Counts bits;
    std::memcpy(&bits, samples, sizeof bits);
    bits &= 0x7FFFFFFF;  // all but the sign
    Floats values;
    std::memcpy(&values, &bits, sizeof values);
    return values;
}

// NaN is never larger.
Floats larger(Floats values, Floats others) noexcept {
    return values > others ? values : others;
}

float largest(const std::array<Floats, kVectors>& lanes) noexcept {
    float result = 0.0F;
    for (std::size_t i = 0; i < kLanes; ++i) {
        result = std::max(result, lanes[i / kWidth][i % kWidth]);
    }
    return result;
}

void measureRun(const float* samples, float fullScale, Lanes& lanes) noexcept {
    std::array<Floats, kVectors> squares{};
    std::array<Floats, kVectors> peak = lanes.peak;
    std::array<Counts, kVectors> count = lanes.fullScale;
    for (std::size_t start = 0; start < kRun; start += kLanes) {
        for (std::size_t i = 0; i < kVectors; ++i) {
            const Floats magnitudes = magnitudesAt(samples + start + i * kWidth);
            squares[i] += magnitudes * magnitudes;
            peak[i] = larger(magnitudes, peak[i]);
            count[i] += magnitudes >= fullScale;
        }
    }
    lanes.peak = peak;
    lanes.fullScale = count;
    for (std::size_t i = 0; i < kLanes; ++i) {
        lanes.squares[i] += static_cast<double>(squares[i / kWidth][i % kWidth]);
    }
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
    Lanes lanes;
    std::size_t done = 0;
    for (; done + kRun <= count; done += kRun)
        measureRun(samples + done, fullScale, lanes);
    if (done < count) {
        std::array<float, kRun> rest{};
        std::memcpy(rest.data(), samples + done, (count - done) * sizeof(float));
        measureRun(rest.data(), fullScale, lanes);
    }

    Measurement result;
    result.samples = count;
    result.peak = largest(lanes.peak);
    for (std::size_t i = 0; i < kLanes; ++i) {
        result.sumOfSquares += lanes.squares[i];
        result.fullScale += static_cast<std::uint64_t>(-lanes.fullScale[i / kWidth][i % kWidth]);
    }
    return std::isfinite(result.sumOfSquares) ? result
                                              : measureCarefully(samples, count, fullScale);
}

float peakOf(const float* samples, std::size_t count) noexcept {
    std::array<Floats, kVectors> peak{};
    std::size_t done = 0;
    for (; done + kLanes <= count; done += kLanes) {
        for (std::size_t i = 0; i < kVectors; ++i) {
            peak[i] = larger(magnitudesAt(samples + done + i * kWidth), peak[i]);
        }
    }
    float result = largest(peak);
    for (; done < count; ++done)
        result = std::max(result, std::fabs(samples[done]));
    return result;
}

double decibels(double amplitude) noexcept {
    return 20.0 * std::log10(amplitude);
}

}  // namespace veltra::console
