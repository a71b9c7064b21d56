// SPDX-License-Identifier: MIT
// What the engine does on the audio thread.
#include "block.h"
#include "engine.h"
#include "mixing.h"

#include <algorithm>

namespace veltra::console {

void Engine::processBlock(float* const* outputs, std::uint32_t outputCount,
                          std::uint32_t frames) noexcept {
    for (std::uint32_t out = 0; out < outputCount; ++out)
        std::fill_n(outputs[out], frames, 0.0F);
    const std::uint32_t used = std::min<std::uint32_t>(outputCount, 2);
    for (std::uint32_t done = 0; done < frames;) {
        m_playhead.takeNews();
        if (m_playhead.moves()) {
            done += roll(outputs, used, done, frames - done);
            continue;
        }
        Preparation preparation{m_playhead.routeNow().number, frames};
        if (m_feeding == Feeding::ByThread) preparation.frames += Glide::framesAt(m_rate);
        m_list.iterate(kPrepareMessage, &preparation);
        if (!m_playhead.tryToStart(preparation.isReady, frames - done)) break;
    }
    m_instrument.render(outputs, used, frames);
    mixDown(outputs, used, frames);
}

// Renders frames from `done` on while the transport moves; answers how many.
std::uint32_t Engine::roll(float* const* outputs, std::uint32_t outputCount, std::uint32_t done,
                           std::uint32_t frames) noexcept {
    std::array<float*, 2> rest{};
    for (std::uint32_t out = 0; out < outputCount; ++out)
        rest[out] = outputs[out] + done;
    std::uint32_t piece = m_playhead.framesInOnePiece(frames);
    const std::int64_t place = m_playhead.place();
    const CMusicalContext music =
        musicalContext(place, m_rate, Metre::unpacked(m_metre.load(std::memory_order_relaxed)));
    const Route& route = m_playhead.routeNow();
    Block block{rest.data(),
                outputCount,
                piece,
                route.number,
                m_playhead.rolledNow(),
                place,
                music,
                m_measuresTruePeaks.load(std::memory_order_relaxed)};
    m_list.iterate(kRenderMessage, &block);
    const bool isOver =
        m_atEnd == AtEnd::Stays && !block.hasMore && route.framesToJump(place) == Route::kNever;
    if (isOver) piece = block.played;
    const Glide& gate = m_playhead.gate();
    for (std::uint32_t out = 0; out < outputCount && gate.moves(); ++out)
        scale(rest[out], rest[out], piece, gate.ramp());
    m_playhead.advance(piece);
    if (isOver) m_playhead.stopAtEnd();
    return piece;
}

// What happens to the whole mix, and its levels.
void Engine::mixDown(float* const* outputs, std::uint32_t outputCount,
                     std::uint32_t frames) noexcept {
    constexpr float kDim = 0.1F;
    const float dim = m_dimmed.load(std::memory_order_relaxed) ? kDim : 1.0F;
    const float gain = m_outputGain.load(std::memory_order_relaxed) * dim;
    const auto balance = static_cast<double>(m_balance.load(std::memory_order_relaxed));
    const Weights weights = panWeights(outputCount == 2 ? balance : 0.0);
    m_outputGains[0].moveTo(weights.left * gain);
    m_outputGains[1].moveTo(weights.right * gain);
    m_monoShare.moveTo(m_mono.load(std::memory_order_relaxed) ? 1.0F : 0.0F);
    for (std::uint32_t done = 0; done < frames;) {
        std::size_t piece = m_monoShare.limit(frames - done);
        for (const Glide& each : m_outputGains)
            piece = each.limit(piece);
        if (outputCount == 2 && !m_monoShare.standsAt(0.0F))
            mixToMono(outputs[0] + done, outputs[1] + done, piece, m_monoShare.ramp());
        for (std::uint32_t out = 0; out < outputCount; ++out) {
            float* const samples = outputs[out] + done;
            const Glide& each = m_outputGains[out];
            if (each.moves()) {
                scale(samples, samples, piece, each.ramp());
            } else if (!each.standsAt(1.0F)) {
                scale(samples, samples, piece, each.value());
            }
        }
        for (Glide* const each : {&m_outputGains[0], &m_outputGains[1], &m_monoShare})
            each->advance(piece);
        done += static_cast<std::uint32_t>(piece);
    }
    for (std::uint32_t out = 0; out < outputCount; ++out)
        m_outputLevels[out].add(outputs[out], frames,
                                m_measuresTruePeaks.load(std::memory_order_relaxed));
}

}  // namespace veltra::console
