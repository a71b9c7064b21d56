// SPDX-License-Identifier: MIT
// From a file's sample rate to the device's, for the ear only: nothing is measured behind it.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include <samplerate.h>

namespace veltra::console {

// Thread: one at a time. Realtime-safe: no.
class Resampler {
public:
    struct Progress {
        std::size_t used = 0;  // input frames taken
        std::size_t made = 0;  // output frames written
    };

    // Null when memory is out or the ratio of the rates is beyond 256.
    static std::unique_ptr<Resampler> make(std::size_t channels, double fromRate, double toRate);

    // Takes up to `inputFrames` planar frames and makes up to `outputFrames`. `last` says that no
    // more input follows; then call until `made` is 0.
    Progress process(const float* const* input, std::size_t inputFrames, float* const* output,
                     std::size_t outputFrames, bool last);

    // Forgets what was taken, as if it had just been made.
    void reset() noexcept;

private:
    struct StateDeleter {
        void operator()(SRC_STATE* state) const noexcept { src_delete(state); }
    };

    std::vector<std::unique_ptr<SRC_STATE, StateDeleter>> m_states;  // one a channel
    double m_ratio = 1.0;
};

}  // namespace veltra::console
