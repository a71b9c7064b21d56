// SPDX-License-Identifier: MIT
#include "veltra/platform/loudness_analysis.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <new>
#include <utility>

#include <ebur128.h>

namespace veltra {

namespace {

constexpr std::size_t kPartsOfMomentary = 4;  // of 0.1 s
constexpr std::size_t kPartsOfShortTerm = 30;
constexpr unsigned long kPart = 100;      // milliseconds
constexpr double kLoudnessOfOne = 0.691;  // LU by which a mean square of 1 is below 0 LUFS
constexpr double kSilence = -std::numeric_limits<double>::infinity();

struct Destroy {
    void operator()(ebur128_state* state) const noexcept { ebur128_destroy(&state); }
};
using State = std::unique_ptr<ebur128_state, Destroy>;

double powerOf(double loudness) noexcept {
    return std::pow(10.0, (loudness + kLoudnessOfOne) / 10.0);
}

double loudnessOf(double power) noexcept {
    return power > 0.0 ? 10.0 * std::log10(power) - kLoudnessOfOne : kSilence;
}

int channelOf(LoudnessRole role) noexcept {
    switch (role) {
        case LoudnessRole::Front:
            break;
        case LoudnessRole::Surround:
            return EBUR128_LEFT_SURROUND;
        case LoudnessRole::Unused:
            return EBUR128_UNUSED;
    }
    return EBUR128_LEFT;
}

// The library would sum up the last 3 s at one go each time it is asked, which is long for an audio
// thread. So it is asked for each 0.1 s, and the windows are put together from those.
class EburAnalysis final : public LoudnessAnalysis {
public:
    EburAnalysis(State state, std::span<const LoudnessRole> channels) noexcept
        : m_state(std::move(state)), m_partFrames((m_state->samplerate + 5) / 10) {
        for (unsigned int i = 0; i < channels.size(); ++i) {
            m_isUsed[i] = channels[i] != LoudnessRole::Unused;
            ebur128_set_channel(m_state.get(), i, channelOf(channels[i]));
        }
    }

    void add(const float* samples, std::size_t frames) noexcept override {
        while (frames > 0) {
            const std::size_t count = std::min(frames, m_partFrames - m_framesInPart);
            if (ebur128_add_frames_float(m_state.get(), samples, count) != EBUR128_SUCCESS) return;
            samples += count * m_state->channels;
            frames -= count;
            m_framesInPart += count;
            if (m_framesInPart == m_partFrames) endPart();
        }
        for (unsigned int channel = 0; channel < m_state->channels; ++channel) {
            double peak = 0.0;
            if (m_isUsed[channel]) ebur128_true_peak(m_state.get(), channel, &peak);
            m_truePeak = std::max(m_truePeak, peak);
        }
    }

    LoudnessValues values() const noexcept override {
        LoudnessValues values = m_values;
        if (m_truePeak > 0.0) values.truePeak = 20.0 * std::log10(m_truePeak);
        return values;
    }

private:
    void endPart() noexcept {
        m_framesInPart = 0;
        double loudness = kSilence;
        ebur128_loudness_window(m_state.get(), kPart, &loudness);
        m_parts[m_nextPart] = powerOf(loudness);
        m_nextPart = (m_nextPart + 1) % kPartsOfShortTerm;
        m_values.momentary = loudnessOf(meanOfLast(kPartsOfMomentary));
        m_values.shortTerm = loudnessOf(meanOfLast(kPartsOfShortTerm));
        ebur128_loudness_global(m_state.get(), &m_values.integrated);
    }

    double meanOfLast(std::size_t count) const noexcept {
        double sum = 0.0;
        for (std::size_t i = 1; i <= count; ++i)
            sum += m_parts[(m_nextPart + kPartsOfShortTerm - i) % kPartsOfShortTerm];
        return sum / static_cast<double>(count);
    }

    const State m_state;
    const std::size_t m_partFrames;
    std::size_t m_framesInPart = 0;
    std::array<double, kPartsOfShortTerm> m_parts{};  // power of each 0.1 s, a ring
    std::size_t m_nextPart = 0;
    std::array<bool, 64> m_isUsed{};
    double m_truePeak = 0.0;
    LoudnessValues m_values;
};

}  // namespace

std::unique_ptr<LoudnessAnalysis> makeLoudnessAnalysis(
    std::uint32_t sampleRate, std::span<const LoudnessRole> channels) noexcept {
    constexpr std::uint32_t kLeastRate = 16;
    constexpr std::uint32_t kHighestRate = 2'822'400;
    if (channels.empty() || channels.size() > 64) return nullptr;
    if (sampleRate < kLeastRate || sampleRate > kHighestRate) return nullptr;
    // With a histogram it takes all its memory now, and none while it measures.
    State state(ebur128_init(static_cast<unsigned int>(channels.size()), sampleRate,
                             EBUR128_MODE_I | EBUR128_MODE_TRUE_PEAK | EBUR128_MODE_HISTOGRAM));
    if (!state) return nullptr;
    return std::unique_ptr<LoudnessAnalysis>(new (std::nothrow)
                                                 EburAnalysis(std::move(state), channels));
}

}  // namespace veltra
