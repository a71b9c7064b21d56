// SPDX-License-Identifier: MIT
#include "veltra/audio/loudness_meter.h"

#include "veltra/base/out_of_memory.h"
#include "veltra/platform/loudness_analysis.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace veltra {

namespace {

std::vector<LoudnessChannel> usualChannels(std::size_t count) {
    std::vector<LoudnessChannel> channels(std::min<std::size_t>(count, 65), LoudnessChannel::Front);
    const std::size_t surround = count == 4 ? 2 : count == 5 ? 3 : 4;
    if (count < 4) return channels;
    channels[surround] = channels[surround + 1] = LoudnessChannel::Surround;
    if (count >= 6) channels[3] = LoudnessChannel::Unused;
    return channels;
}

LoudnessRole roleOf(LoudnessChannel channel) noexcept {
    switch (channel) {
        case LoudnessChannel::Front:
            break;
        case LoudnessChannel::Surround:
            return LoudnessRole::Surround;
        case LoudnessChannel::Unused:
            return LoudnessRole::Unused;
    }
    return LoudnessRole::Front;
}

}  // namespace

struct LoudnessMeter::Analysis {
    std::unique_ptr<LoudnessAnalysis> values;
    std::uint32_t generation = 0;
    Analysis* nextSpent = nullptr;
};

LoudnessMeter::LoudnessMeter(std::uint32_t sampleRate, std::size_t channels)
    : LoudnessMeter(sampleRate, std::span<const LoudnessChannel>(usualChannels(channels))) {}

LoudnessMeter::LoudnessMeter(std::uint32_t sampleRate, std::span<const LoudnessChannel> channels)
    : m_sampleRate(sampleRate),
      m_channels(channels.begin(), channels.end()),
      m_analysis(makeAnalysis()),
      m_isAvailable(m_analysis != nullptr) {}

LoudnessMeter::~LoudnessMeter() {
    delete m_next.load(std::memory_order_relaxed);
    collect();
}

std::unique_ptr<LoudnessMeter::Analysis> LoudnessMeter::makeAnalysis() const noexcept {
    return unlessOutOfMemory(std::unique_ptr<Analysis>(), [&] {
        std::vector<LoudnessRole> roles;
        for (const LoudnessChannel channel : m_channels)
            roles.push_back(roleOf(channel));
        auto made = std::make_unique<Analysis>();
        made->values = makeLoudnessAnalysis(m_sampleRate, roles);
        made->generation = m_generation;
        if (!made->values) made.reset();
        return made;
    });
}

void LoudnessMeter::add(const float* samples, std::size_t frames) noexcept {
    if (!m_analysis || samples == nullptr) return;
    if (Analysis* const next = m_next.exchange(nullptr, std::memory_order_acquire)) {  // reset()
        giveBack(m_analysis.release());
        m_analysis.reset(next);
    }
    // A copy of the samples that holds nothing but numbers, piece by piece.
    std::array<float, 1024> finite;
    const std::size_t channels = m_channels.size();
    const std::size_t most = finite.size() / channels;
    for (std::size_t done = 0; done < frames;) {
        const std::size_t count = std::min(frames - done, most);
        std::transform(samples + done * channels, samples + (done + count) * channels,
                       finite.begin(),
                       [](float sample) { return std::isfinite(sample) ? sample : 0.0F; });
        m_analysis->values->add(finite.data(), count);
        done += count;
    }
    const LoudnessValues values = m_analysis->values->values();
    m_offers.change([&](Offer& offer, bool /*isFresh*/) {
        offer.reading = {values.momentary, values.shortTerm, values.integrated, values.truePeak};
        offer.generation = m_analysis->generation;
    });
}

void LoudnessMeter::collect() noexcept {
    std::unique_ptr<Analysis> spent(m_spent.exchange(nullptr, std::memory_order_acquire));  // add()
    while (spent != nullptr)
        spent.reset(spent->nextSpent);
}

// The other side only takes the whole list: when the exchange fails, the list is empty, and nobody
// but this side fills it, so that the second one succeeds.
void LoudnessMeter::giveBack(Analysis* analysis) noexcept {
    analysis->nextSpent = m_spent.load(std::memory_order_relaxed);
    while (!m_spent.compare_exchange_strong(analysis->nextSpent, analysis,
                                            std::memory_order_release,  // with collect()
                                            std::memory_order_relaxed)) {
    }
}

LoudnessReading LoudnessMeter::read() noexcept {
    collect();
    if (const auto offer = m_offers.take()) m_last = *offer;
    return m_last.generation == m_generation ? m_last.reading : LoudnessReading{};
}

bool LoudnessMeter::reset() noexcept {
    if (!m_isAvailable) return true;
    collect();
    ++m_generation;
    std::unique_ptr<Analysis> next = makeAnalysis();
    if (!next) {
        --m_generation;
        return false;
    }
    delete m_next.exchange(next.release(), std::memory_order_acq_rel);  // with add()
    return true;
}

}  // namespace veltra
