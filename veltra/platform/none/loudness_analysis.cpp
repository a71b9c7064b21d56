// SPDX-License-Identifier: MIT
#include "veltra/platform/loudness_analysis.h"

namespace veltra {

std::unique_ptr<LoudnessAnalysis> makeLoudnessAnalysis(
    std::uint32_t /*sampleRate*/, std::span<const LoudnessRole> /*channels*/) noexcept {
    return nullptr;
}

}  // namespace veltra
