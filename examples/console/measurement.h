// SPDX-License-Identifier: MIT
// What the report says about a recording's samples: how loud, and how often at the limit.
#pragma once

#include <cstddef>
#include <cstdint>

namespace veltra::console {

struct Measurement {
    std::uint64_t samples = 0;    // of all channels together
    std::uint64_t fullScale = 0;  // see fullScaleMagnitude()
    std::uint64_t notFinite = 0;  // NaN or infinite; they count as silence everywhere else
    double sumOfSquares = 0.0;
    float peak = 0.0F;  // largest magnitude; 1.0 is full scale

    // The root of the mean square over all samples of all channels; 0 without samples. A sine at
    // full scale answers 0.7071 (-3.01 dBFS).
    double rms() const noexcept;

    void add(const Measurement& other) noexcept;
};

// The magnitude from which a sample counts as "at full scale": the largest positive value of an
// integer format of `bits`, but never finer than that of 16 bits (32767 / 32768), which also holds
// for floats. One and the same clipped recording is thus counted alike in 16, 24 and 32 bits and
// in float, up to the half step by which the narrower format rounds. Symmetric: -32767 counts too.
float fullScaleMagnitude(int bits) noexcept;

// Measures `count` samples of one channel. Samples that are not finite are counted and overwritten
// with 0: nobody wants them in a mix.
// Thread: any. Realtime-safe: yes.
Measurement measure(float* samples, std::size_t count, float fullScale) noexcept;

// Decibels relative to full scale; minus infinity for 0.
double decibels(double amplitude) noexcept;

}  // namespace veltra::console
