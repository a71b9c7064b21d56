// SPDX-License-Identifier: MIT
// What travels through the callback list for each block of audio.
#pragma once

#include "veltra/audio/musical_context.h"

#include <cstddef>
#include <cstdint>

namespace veltra::console {

// The messages of the callback list. Render: mix yourself into the Block that `data` points to.
// Prepare: the transport stands still; `data` is a Preparation.
inline constexpr std::uint32_t kRenderMessage = 1;
inline constexpr std::uint32_t kPrepareMessage = 2;

struct Block {
    float* const* outputs;      // planar; each strip adds to what is there
    std::uint32_t outputCount;  // 0 to 2; 0 when nobody listens
    std::uint32_t frames;
    std::uint16_t route;           // the number of the route that is followed
    std::int64_t rolled;           // frames that were played on it before
    std::int64_t position;         // of the first frame, from the transport's beginning
    const CMusicalContext& music;  // at that position
    bool measuresTruePeaks = false;

    // The strips' answers.
    bool hasMore = false;      // some strip is not at its end
    std::uint32_t played = 0;  // frames until the last strip came to its end in this block
};

struct Preparation {
    std::uint16_t route;
    std::size_t frames;   // that a strip should hold ready
    bool isReady = true;  // the strips' answer: whether all of them do
};

}  // namespace veltra::console
