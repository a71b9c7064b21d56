// SPDX-License-Identifier: MIT
#include "engine.h"

#include "block.h"
#include "mixing.h"

#include <algorithm>
#include <new>

namespace veltra::console {

Engine::Engine(Feeding feeding, std::int32_t rate, std::size_t aheadFrames)
    : m_feeding(feeding), m_rate(rate), m_aheadFrames(aheadFrames) {
    if (m_feeding == Feeding::ByThread) m_reader.start();
}

Engine::~Engine() {
    m_reader.stop();
}

StripId Engine::add(std::unique_ptr<AudioFile> file) {
    const bool live = m_feeding == Feeding::ByThread;
    const double rate = m_feeding == Feeding::ByCaller ? 0.0 : m_rate;
    auto strip = std::make_unique<Strip>(std::move(file), rate, m_aheadFrames);
    if (live) {
        // A head start before the audio thread can see it: no underrun at the first block.
        strip->feed();
        strip->feed();
    } else {
        strip->showProgress();
    }
    m_strips.push_back({++m_lastId, std::move(strip)});
    Strip* const added = m_strips.back().strip.get();
    try {
        if (live) m_reader.add(added);
        if (!m_list.Add(added, &Strip::render)) throw std::bad_alloc();
    } catch (...) {
        if (live) m_reader.remove(added);
        m_strips.pop_back();
        throw;
    }
    return m_lastId;
}

void Engine::remove(StripId id) {
    for (Entry& entry : m_strips) {
        if (entry.id == id && !entry.removed) takeOut(entry);
    }
}

void Engine::removeAll() {
    for (Entry& entry : m_strips) {
        if (!entry.removed) takeOut(entry);
    }
}

void Engine::takeOut(Entry& entry) {
    entry.isUnwanted = true;
    if (!m_list.Remove(entry.strip.get())) return;  // memory is out: collect() tries again
    entry.lastUse = m_started.load(std::memory_order_seq_cst);  // with processBlock(); see above
    entry.removed = true;
    if (m_feeding == Feeding::ByThread) m_reader.remove(entry.strip.get());
}

std::vector<StripResult> Engine::collect() {
    std::vector<StripResult> results;
    for (Entry& entry : m_strips) {
        if (!entry.removed && (entry.isUnwanted || entry.strip->isDrained())) takeOut(entry);
    }
    const std::uint64_t finished = m_finished.load(std::memory_order_acquire);  // processBlock()
    for (auto entry = m_strips.begin(); entry != m_strips.end();) {
        if (entry->removed && entry->lastUse <= finished) {
            results.push_back(resultOf(*entry));
            entry = m_strips.erase(entry);
        } else {
            ++entry;
        }
    }
    return results;
}

StripResult Engine::resultOf(const Entry& entry) {
    const Strip& strip = *entry.strip;
    StripResult result;
    result.id = entry.id;
    result.path = strip.path();
    result.format = strip.format();
    result.measurement = strip.measurement();
    result.loudestChannels = strip.loudestChannels().seconds();
    result.framesRead = strip.file().framesRead();
    result.underruns = strip.underruns();
    result.missedFrames = strip.missedFrames();
    const auto end = static_cast<std::int64_t>(result.framesRead);
    result.end = barBeatTick(musicalContext(end, result.format.rate).m_positionInTicks);
    result.complete = strip.isDrained() && !strip.wasStopped();
    result.problem = strip.file().problem();
    return result;
}

const FileFormat* Engine::format(StripId id) const noexcept {
    const auto entry = std::find_if(m_strips.begin(), m_strips.end(),
                                    [id](const Entry& each) { return each.id == id; });
    return entry != m_strips.end() ? &entry->strip->format() : nullptr;
}

bool Engine::isDrained() const noexcept {
    return std::all_of(m_strips.begin(), m_strips.end(), [](const Entry& entry) {
        return entry.removed || entry.strip->isDrained();
    });
}

void Engine::setMuted(StripId id, bool muted) noexcept {
    for (const Entry& entry : m_strips) {
        if (entry.id == id) entry.strip->setMuted(muted);
    }
}

std::vector<StripMeter> Engine::meters() {
    std::vector<StripMeter> meters;
    for (const Entry& entry : m_strips) {
        if (entry.removed) continue;
        StripMeter& meter = meters.emplace_back();
        meter.id = entry.id;
        meter.path = entry.strip->path();
        meter.peaks = entry.strip->takePeaks();
        meter.peak = *std::max_element(meter.peaks.begin(), meter.peaks.end());
        meter.underruns = entry.strip->underruns();
        meter.muted = entry.strip->isMuted();
        meter.framesPlayed = entry.strip->framesPlayed();
        meter.framesTotal = entry.strip->framesTotal();
    }
    return meters;
}

OutputPeaks Engine::takeOutputPeaks() noexcept {
    OutputPeaks peaks{};
    for (std::size_t i = 0; i < peaks.size(); ++i)
        peaks[i] = m_outputPeaks[i].take();
    return peaks;
}

void Engine::feed(std::uint32_t frames) {
    for (const Entry& entry : m_strips) {
        while (!entry.strip->isReadyFor(frames) && entry.strip->feed()) {
        }
    }
}

void Engine::processBlock(float* const* outputs, std::uint32_t outputCount,
                          std::uint32_t frames) noexcept {
    m_started.fetch_add(1, std::memory_order_seq_cst);  // with takeOut()
    for (std::uint32_t out = 0; out < outputCount; ++out) {
        std::fill_n(outputs[out], frames, 0.0F);
    }
    const std::int64_t position = m_position.load(std::memory_order_relaxed);
    const CMusicalContext music = musicalContext(position, m_rate);
    m_ticks.store(music.m_positionInTicks, std::memory_order_relaxed);
    Block block{outputs, outputCount, frames, position, music};
    m_list.Iterate(kRenderMessage, &block);
    for (std::uint32_t out = 0; out < outputCount; ++out) {
        m_outputPeaks[out % m_outputPeaks.size()].raise(largestMagnitude(outputs[out], frames));
    }
    m_position.store(position + frames, std::memory_order_relaxed);
    m_finished.fetch_add(1, std::memory_order_release);  // with collect()
}

}  // namespace veltra::console
