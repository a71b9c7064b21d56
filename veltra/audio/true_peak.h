// SPDX-License-Identifier: MIT
// The true peak of one channel: how high the signal rises between its samples, where a converter
// would clip though no sample does. For meters:
//
//     LevelReading level = LevelTap::measure(block, frames);           // audio thread
//     level.peak = truePeak.add(block, frames);
//     tap.add(level);
//
// Three values are interpolated between each two samples, as broadcasters do it (ITU-R BS.1770,
// annex 2: oversampling by 4 with 12 taps for each value). Up to 0.4 of the sample rate a sine
// reads at most 0.4 dB too low and 0.1 dB too high; a sample never reads lower than it is.
#pragma once

#include "veltra/export.h"

#include <array>
#include <cstddef>

namespace veltra {

// Thread: audio, one at a time. Realtime-safe: yes.
class VELTRA_EXPORT TruePeak {
public:
    // Returns the largest magnitude, 1 at full scale, of these samples, and of what lies between
    // samples up to the sixth before the last one: what lies behind that is known with the next
    // call. The next sample is `stride` floats further on. NaN counts as silence, a magnitude above
    // kLargestLevel (level_tap.h) as that. Null counts as no samples; without samples it returns 0.
    float add(const float* samples, std::size_t frames, std::size_t stride = 1) noexcept;

    // The next sample does not follow the last one: silence lies before it.
    void reset() noexcept { m_before = {}; }

private:
    static constexpr std::size_t kBefore = 11;

    std::array<float, kBefore> m_before{};  // the last samples, the newest at the end
};

}  // namespace veltra
