// SPDX-License-Identifier: MIT
// The loops of the audio thread.
#pragma once

#include <cstddef>

namespace veltra::console {

// A gain that moves by an equal step with each frame: that of frame i (from 0) is
// (position + (i + 1) * step) / length. Whole numbers below 2^24, so that it arrives at 0 and at 1
// exactly.
struct Ramp {
    float position = 0.0F;  // where it stands before the first frame
    float step = 1.0F;      // 1 or -1
    float length = 1.0F;    // the way from silence to full, in frames
};

// Adds `count` samples of `source` to `destination`, and answers the largest magnitude added.
// Thread: any. Realtime-safe: yes.
float addToMix(float* destination, const float* source, std::size_t count) noexcept;
float addToMix(float* destination, const float* source, std::size_t count, Ramp ramp) noexcept;

// The largest magnitude of `count` samples. Thread: any. Realtime-safe: yes.
float largestMagnitude(const float* samples, std::size_t count) noexcept;

}  // namespace veltra::console
