// SPDX-License-Identifier: MIT
#include "resampler.h"

namespace veltra::console {

std::unique_ptr<Resampler> Resampler::make(std::size_t channels, double fromRate, double toRate) {
    auto resampler = std::make_unique<Resampler>();
    resampler->m_ratio = toRate / fromRate;
    if (src_is_valid_ratio(resampler->m_ratio) == 0) return nullptr;
    for (std::size_t channel = 0; channel < channels; ++channel) {
        int error = 0;
        resampler->m_states.emplace_back(src_new(SRC_SINC_MEDIUM_QUALITY, 1, &error));
        if (!resampler->m_states.back()) return nullptr;
    }
    return resampler;
}

void Resampler::reset() noexcept {
    for (const auto& state : m_states)
        src_reset(state.get());
}

Resampler::Progress Resampler::process(const float* const* input, std::size_t inputFrames,
                                       float* const* output, std::size_t outputFrames, bool last) {
    // The channels' states see the same sizes in the same order, so they all make equal progress.
    Progress progress;
    for (std::size_t channel = 0; channel < m_states.size(); ++channel) {
        SRC_DATA data{};
        data.data_in = input[channel];
        data.data_out = output[channel];
        data.input_frames = static_cast<long>(inputFrames);
        data.output_frames = static_cast<long>(outputFrames);
        data.end_of_input = last ? 1 : 0;
        data.src_ratio = m_ratio;
        if (src_process(m_states[channel].get(), &data) != 0) return {inputFrames, 0};
        progress.used = static_cast<std::size_t>(data.input_frames_used);
        progress.made = static_cast<std::size_t>(data.output_frames_gen);
    }
    return progress;
}

}  // namespace veltra::console
