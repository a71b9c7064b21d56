// SPDX-License-Identifier: MIT
// What travels through the callback list for each block of audio.
#pragma once

#include "veltra/audio/musical_context.h"

#include <cstdint>

namespace veltra::console {

// The message of the callback list: mix yourself into the Block that `data` points to.
inline constexpr std::uint32_t kRenderMessage = 1;

struct Block {
    float* const* outputs;      // planar; each strip adds to what is there
    std::uint32_t outputCount;  // channels; 0 when nobody listens
    std::uint32_t frames;
    std::int64_t position;         // of the first frame, in samples since the transport started
    const CMusicalContext& music;  // at that position
};

}  // namespace veltra::console
