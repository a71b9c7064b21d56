// SPDX-License-Identifier: MIT
#include "veltra/audio/level_tap.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace veltra {

namespace {

constexpr std::size_t kLanes = 16;        // sums side by side, so that compilers use vectors
constexpr std::size_t kMostRounds = 256;  // for which a float holds the sum of a lane well

float magnitudeOf(float sample) noexcept {
    const float size = std::fabs(sample);
    const float limited = size > kLargestLevel ? kLargestLevel : size;
    return limited == limited ? limited : 0.0F;  // NaN
}

struct Lanes {
    std::array<float, kLanes> peaks{};
    std::array<float, kLanes> squares{};

    void add(std::size_t lane, float sample) noexcept {
        const float magnitude = magnitudeOf(sample);
        peaks[lane] = magnitude > peaks[lane] ? magnitude : peaks[lane];
        squares[lane] += magnitude * magnitude;
    }
};

}  // namespace

float LevelReading::rms() const noexcept {
    return std::sqrt(meanSquare);
}

LevelReading LevelTap::measure(const float* samples, std::size_t frames,
                               std::size_t stride) noexcept {
    if (samples == nullptr || frames == 0) return {};
    double squares = 0.0;
    float peak = 0.0F;
    for (std::size_t done = 0; done < frames;) {
        const std::size_t count = std::min(frames - done, kLanes * kMostRounds);
        const float* const block = samples + done * stride;
        Lanes lanes;
        std::size_t i = 0;
        if (stride == 1) {
            for (; i + kLanes <= count; i += kLanes) {
                for (std::size_t lane = 0; lane < kLanes; ++lane)
                    lanes.add(lane, block[i + lane]);
            }
        }
        for (; i < count; ++i)
            lanes.add(i % kLanes, block[i * stride]);
        for (std::size_t lane = 0; lane < kLanes; ++lane) {
            squares += static_cast<double>(lanes.squares[lane]);
            peak = std::max(peak, lanes.peaks[lane]);
        }
        done += count;
    }
    return {peak, static_cast<float>(squares / static_cast<double>(frames)), frames};
}

void LevelTap::Sums::add(const LevelReading& measured) noexcept {
    // A number whatever was measured elsewhere.
    const float square = std::min(measured.meanSquare, kLargestLevel * kLargestLevel);
    if (square > 0.0F)
        squares += static_cast<double>(square) * static_cast<double>(measured.frames);
    frames += measured.frames;
    peak = std::max(peak, magnitudeOf(measured.peak));
}

void LevelTap::add(const float* samples, std::size_t frames, std::size_t stride) noexcept {
    add(measure(samples, frames, stride));
}

void LevelTap::add(const LevelReading& measured) noexcept {
    if (measured.frames == 0) return;
    m_sums.change([&](Sums& sums, bool isFresh) {
        if (isFresh) sums = {};
        sums.add(measured);
    });
}

LevelReading LevelTap::take() noexcept {
    const auto sums = m_sums.take();
    if (!sums) return {};
    return {sums->peak, static_cast<float>(sums->squares / static_cast<double>(sums->frames)),
            sums->frames};
}

RmsAverage::RmsAverage(double sampleRate, double seconds) noexcept
    : m_framesOfAverage(sampleRate * seconds > 0.0 ? sampleRate * seconds : 0.0) {}

float RmsAverage::add(const LevelReading& reading) noexcept {
    if (reading.frames > 0) {
        const double old = m_framesOfAverage > 0.0
                               ? std::exp(-static_cast<double>(reading.frames) / m_framesOfAverage)
                               : 0.0;
        m_meanSquare = old * m_meanSquare + (1.0 - old) * static_cast<double>(reading.meanSquare);
    }
    return rms();
}

float RmsAverage::rms() const noexcept {
    return static_cast<float>(std::sqrt(m_meanSquare));
}

}  // namespace veltra
