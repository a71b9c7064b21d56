// SPDX-License-Identifier: MIT
// An audio file, decoded.
#pragma once

#include "samples.h"

#include <string>

namespace veltra::survivor {

struct Recording {
    std::size_t channels = 0;  // 1 or 2; further ones are left out
    std::size_t frames = 0;
    Samples samples;  // one channel after the other

    const float* channel(std::size_t index) const noexcept {
        return samples.get() + (index < channels ? index : 0) * frames;
    }
    std::size_t bytes() const noexcept { return channels * frames * sizeof(float); }
};

// Asks for room first. A recording without samples when the file cannot be read or memory is out:
// `problem` is then one line for the user.
Recording loadRecording(const std::string& path, std::string& problem);

}  // namespace veltra::survivor
