// SPDX-License-Identifier: MIT
// The loops of the audio thread.
#pragma once

#include <cstddef>

namespace veltra::console {

// A gain that moves by an equal step with each frame: that of frame i (from 0) is
// from + distance * (done + i + 1) / length. Whole numbers of frames below 2^24.
struct Ramp {
    float from = 0.0F;
    float distance = 1.0F;
    float done = 0.0F;    // frames of the way that were gone before
    float length = 1.0F;  // frames of the whole way
};

// Add `count` samples of `source`, times a gain, to `destination`. No overlap.
// Thread: any. Realtime-safe: yes.
void addToMix(float* destination, const float* source, std::size_t count, float gain) noexcept;
void addToMix(float* destination, const float* source, std::size_t count, Ramp ramp) noexcept;

// Write `count` samples of `source`, times a gain, to `destination`, which may be `source`.
// Thread: any. Realtime-safe: yes.
void scale(float* destination, const float* source, std::size_t count, float gain) noexcept;
void scale(float* destination, const float* source, std::size_t count, Ramp ramp) noexcept;

// Turns the two towards their mean: by 0 both stay, by 1 both become it.
// Thread: any. Realtime-safe: yes.
void mixToMono(float* left, float* right, std::size_t count, Ramp share) noexcept;

}  // namespace veltra::console
