// SPDX-License-Identifier: MIT
#include "mixing.h"

namespace veltra::console {

namespace {

float gainAt(const Ramp& ramp, std::size_t frame) noexcept {
    return ramp.from + ramp.distance * ((ramp.done + static_cast<float>(frame + 1)) / ramp.length);
}

}  // namespace

void addToMix(float* destination, const float* source, std::size_t count, float gain) noexcept {
    if (gain == 0.0F) return;
    float* const __restrict to = destination;
    const float* const __restrict from = source;
    if (gain == 1.0F) {
        for (std::size_t i = 0; i < count; ++i)
            to[i] += from[i];
        return;
    }
    for (std::size_t i = 0; i < count; ++i)
        to[i] += from[i] * gain;
}

void addToMix(float* destination, const float* source, std::size_t count, Ramp ramp) noexcept {
    for (std::size_t i = 0; i < count; ++i)
        destination[i] += source[i] * gainAt(ramp, i);
}

void scale(float* destination, const float* source, std::size_t count, float gain) noexcept {
    for (std::size_t i = 0; i < count; ++i)
        destination[i] = source[i] * gain;
}

void scale(float* destination, const float* source, std::size_t count, Ramp ramp) noexcept {
    for (std::size_t i = 0; i < count; ++i)
        destination[i] = source[i] * gainAt(ramp, i);
}

void mixToMono(float* left, float* right, std::size_t count, Ramp share) noexcept {
    for (std::size_t i = 0; i < count; ++i) {
        const float mean = (left[i] + right[i]) * 0.5F;
        const float part = gainAt(share, i);
        left[i] += (mean - left[i]) * part;
        right[i] += (mean - right[i]) * part;
    }
}

}  // namespace veltra::console
