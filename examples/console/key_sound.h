// SPDX-License-Identifier: MIT
// A file as the keyboard plays it: all of its samples in memory, at most two channels.
#pragma once

#include "audio_file.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace veltra::console {

class KeySound {
public:
    // More of a file is not played: 44 seconds at 48 kHz, which take 32 MiB with the levels.
    static constexpr std::size_t kMostFrames = std::size_t{1} << 21U;

    // Surround sound is folded to the two, and the last 5 ms fade out. Null when the file has no
    // frames, or when `stop` becomes true before its end. Thread: any.
    static std::shared_ptr<const KeySound> read(AudioFile& file, const std::atomic<bool>& stop);

    // The same sound at half the rate of the level before, so that notes high above the file's own
    // do not fold what lies beyond the output's range back into it.
    struct Level {
        // Before and behind the frames lie what interpolation reaches for, zeros.
        static constexpr std::size_t kBefore = 1;
        static constexpr std::size_t kBehind = 2;

        std::size_t frames = 0;
        std::vector<std::vector<float>> channels;
    };

    const std::vector<Level>& levels() const noexcept { return m_levels; }  // at least one
    double rate() const noexcept { return m_rate; }                         // of the first level

private:
    KeySound() = default;

    std::vector<Level> m_levels;
    double m_rate = 0.0;
};

}  // namespace veltra::console
