// SPDX-License-Identifier: MIT
#include "mixing.h"

#include "lanes.h"

#include <algorithm>
#include <cmath>

namespace veltra::console {

float addToMix(float* destination, const float* source, std::size_t count) noexcept {
    Range range;
    std::size_t done = 0;
    for (; done + kLanes <= count; done += kLanes) {
        for (std::size_t i = 0; i < kVectors; ++i) {
            const std::size_t place = done + i * kWidth;
            const Floats values = load(source + place);
            store(destination + place, load(destination + place) + values);
            range.show(i, values);
        }
    }
    float peak = range.largestMagnitude();
    for (; done < count; ++done) {
        destination[done] += source[done];
        peak = std::max(peak, std::fabs(source[done]));
    }
    return peak;
}

float addToMix(float* destination, const float* source, std::size_t count, Ramp ramp) noexcept {
    float peak = 0.0F;
    for (std::size_t i = 0; i < count; ++i) {
        ramp.position += ramp.step;
        const float value = source[i] * (ramp.position / ramp.length);
        destination[i] += value;
        peak = std::max(peak, std::fabs(value));
    }
    return peak;
}

float largestMagnitude(const float* samples, std::size_t count) noexcept {
    Range range;
    std::size_t done = 0;
    for (; done + kLanes <= count; done += kLanes) {
        for (std::size_t i = 0; i < kVectors; ++i)
            range.show(i, load(samples + done + i * kWidth));
    }
    float peak = range.largestMagnitude();
    for (; done < count; ++done)
        peak = std::max(peak, std::fabs(samples[done]));
    return peak;
}

}  // namespace veltra::console
