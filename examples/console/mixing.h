// The loop of the audio thread.
#pragma once

#include <cstddef>

namespace veltra::console {

// Adds `count` samples of `source` to `destination`, and answers their largest magnitude.
// Thread: any. Realtime-safe: yes.
float addToMix(float* destination, const float* source, std::size_t count) noexcept;

}  // namespace veltra::console
