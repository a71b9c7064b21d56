// SPDX-License-Identifier: MIT
#include "veltra/audio/levels.h"

#include "veltra/audio/level_tap.h"

#include <new>

namespace veltra {

struct VLLevelTap {
    LevelTap tap;
};

VLLevelTap* VLLevelTapCreate() noexcept {
    return new (std::nothrow) VLLevelTap;
}

void VLLevelTapDestroy(VLLevelTap* tap) noexcept {
    delete tap;
}

void VLLevelTapAdd(VLLevelTap* tap, const float* samples, std::size_t frames,
                   std::size_t stride) noexcept {
    if (tap != nullptr) tap->tap.add(samples, frames, stride);
}

VLLevelReading VLLevelTapTake(VLLevelTap* tap) noexcept {
    if (tap == nullptr) return {};
    const LevelReading reading = tap->tap.take();
    return {reading.peak, reading.meanSquare, reading.frames};
}

}  // namespace veltra
