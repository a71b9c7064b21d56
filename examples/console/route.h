// SPDX-License-Identifier: MIT
// Where the transport goes from a place on. The thread that reads files and the thread that plays
// them follow the same route, each on its own, and so agree about every frame.
#pragma once

#include <cstdint>
#include <limits>

namespace veltra::console {

// Frames are those of the output.
struct Route {
    static constexpr std::int64_t kNever = std::numeric_limits<std::int64_t>::max();

    std::uint16_t number = 0;  // each differs from the ones before it
    std::int64_t start = 0;
    bool loops = false;
    std::int64_t loopBegin = 0;
    std::int64_t loopEnd = 0;  // the first frame that is not played

    // How many frames are played from `place` on before it jumps back. A place at or beyond the
    // loop's end never does.
    std::int64_t framesToJump(std::int64_t place) const noexcept {
        return loops && place < loopEnd ? loopEnd - place : kNever;
    }

    // The place `frames` later, at most framesToJump() of them.
    std::int64_t after(std::int64_t place, std::int64_t frames) const noexcept {
        return frames == framesToJump(place) ? loopBegin : place + frames;
    }

    // The place `rolled` frames after the start.
    std::int64_t placeAt(std::int64_t rolled) const noexcept {
        const std::int64_t first = framesToJump(start);
        if (rolled < first) return start + rolled;
        return loopBegin + (rolled - first) % (loopEnd - loopBegin);
    }
};

}  // namespace veltra::console
