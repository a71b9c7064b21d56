// SPDX-License-Identifier: MIT
#include "engine.h"

#include <algorithm>
#include <new>

namespace veltra::console {

namespace {

constexpr double kShortestLoopSeconds = 0.01;

}  // namespace

Engine::Engine(Feeding feeding, std::int32_t rate, std::size_t aheadFrames, AtEnd atEnd)
    : m_feeding(feeding),
      m_atEnd(atEnd),
      m_rate(rate),
      m_aheadFrames(aheadFrames),
      m_playhead(rate, feeding != Feeding::ByThread),
      m_instrument(rate),
      m_outputGains{Glide(Glide::framesAt(rate), 1.0F), Glide(Glide::framesAt(rate), 1.0F)},
      m_monoShare(Glide::framesAt(rate), 0.0F),
      m_metre(Metre{}.packed()) {
    if (m_feeding == Feeding::ByThread) m_readers.start();
}

Engine::~Engine() {
    for (const Entry& entry : m_strips)
        m_readers.remove(entry.strip.get());
    m_readers.stop();
    for (Entry& entry : m_strips) {
        // A thread that does not come back from a file keeps what it works with.
        if (m_readers.holds(entry.strip.get())) static_cast<void>(entry.strip.release());
    }
}

StripId Engine::add(std::unique_ptr<AudioFile> file) {
    const bool live = m_feeding == Feeding::ByThread;
    StripSetup setup;
    setup.outputRate = m_feeding == Feeding::ByCaller ? 0.0 : m_rate;
    setup.ringFrames = m_aheadFrames;
    setup.reserve = live ? Glide::framesAt(m_rate) : 0;
    setup.route = m_playhead.route();
    setup.rolled = m_playhead.rolled();
    if (m_feeding == Feeding::ByCaller) setup.offset = setup.route.placeAt(setup.rolled);
    auto strip = std::make_unique<Strip>(std::move(file), setup);
    if (live) {
        // A head start before the audio thread can see it: no underrun at the first block.
        strip->feed();
        strip->feed();
    } else {
        strip->showProgress();
    }
    Entry entry;
    entry.id = ++m_lastId;
    entry.strip = std::move(strip);
    m_strips.push_back(std::move(entry));
    Strip* const added = m_strips.back().strip.get();
    applyGains();
    try {
        if (live) m_readers.add(added);
        if (!m_list.add(added, &Strip::render)) throw std::bad_alloc();
    } catch (...) {
        m_readers.remove(added);
        if (!m_readers.waitFor(added)) static_cast<void>(m_strips.back().strip.release());
        m_strips.pop_back();
        throw;
    }
    return m_lastId;
}

const Engine::Entry* Engine::find(StripId id) const noexcept {
    const auto entry = std::find_if(m_strips.begin(), m_strips.end(),
                                    [id](const Entry& each) { return each.id == id; });
    return entry != m_strips.end() ? &*entry : nullptr;
}

void Engine::remove(StripId id) {
    Entry* const entry = find(id);
    if (entry == nullptr || entry->removal) return;
    entry->isUnwanted = true;
    entry->strip->leave();
    applyGains();
}

void Engine::removeAll() {
    for (Entry& entry : m_strips) {
        if (!entry.removal) takeOut(entry);
    }
    m_list.iterate(0, nullptr);  // nobody else does, and no strip knows this message
    for (const Entry& entry : m_strips)
        m_readers.waitFor(entry.strip.get());
}

void Engine::takeOut(Entry& entry) {
    entry.isUnwanted = true;
    entry.removal = m_list.remove(entry.strip.get());
    if (!entry.removal) return;  // memory is out: collect() tries again
    m_readers.remove(entry.strip.get());
}

std::vector<StripResult> Engine::collect() {
    std::vector<StripResult> results;
    for (Entry& entry : m_strips) {
        if (entry.removal) continue;
        const bool hasLeft = entry.isUnwanted && entry.strip->isSilent();
        const bool hasEnded = m_atEnd == AtEnd::Leaves && entry.strip->isDrained();
        if (hasLeft || hasEnded) takeOut(entry);
    }
    // Offline no block is in progress, and so the list can be brought up to date at once.
    if (m_feeding != Feeding::ByThread) m_list.iterate(0, nullptr);
    for (auto entry = m_strips.begin(); entry != m_strips.end();) {
        const bool isUsed = !entry->removal || !entry->removal->isSafe();
        if (isUsed || m_readers.holds(entry->strip.get())) {
            ++entry;
        } else {
            results.push_back(resultOf(*entry));
            entry = m_strips.erase(entry);
        }
    }
    m_list.collect();
    return results;
}

StripResult Engine::resultOf(const Entry& entry) const {
    const Strip& strip = *entry.strip;
    const FileStream& stream = strip.stream();
    StripResult result;
    result.id = entry.id;
    result.path = strip.path();
    result.format = strip.format();
    result.measurement = stream.measurement();
    result.loudestChannels = stream.loudestChannels().seconds();
    result.framesRead = stream.framesMeasured();
    result.underruns = strip.underruns();
    result.missedFrames = strip.missedFrames();
    const auto end = static_cast<std::int64_t>(result.framesRead);
    result.end = placeInMusic(end, result.format.rate, Metre{});
    const bool isPlayed = strip.isDrained() || m_atEnd == AtEnd::Stays;
    result.complete = stream.isComplete() && isPlayed && !stream.wasStopped();
    result.problem = stream.file().problem();
    return result;
}

const FileFormat* Engine::format(StripId id) const noexcept {
    const Entry* const entry = find(id);
    return entry != nullptr ? &entry->strip->format() : nullptr;
}

bool Engine::isDrained() const noexcept {
    return std::all_of(m_strips.begin(), m_strips.end(), [](const Entry& entry) {
        return entry.removal || entry.strip->isDrained();
    });
}

bool Engine::isHeard(StripId id) const noexcept {
    const Entry* const entry = find(id);
    return entry != nullptr && entry->isHeard;
}

void Engine::applyGains() noexcept {
    const bool isAnySoloed = std::any_of(m_strips.begin(), m_strips.end(), [](const Entry& each) {
        return each.isSoloed && !each.isUnwanted;
    });
    for (Entry& entry : m_strips) {
        entry.isHeard = !entry.isMuted && (entry.isSoloed || !isAnySoloed);
        entry.strip->setGain(entry.isHeard ? entry.gain : 0.0F);
    }
}

void Engine::setGain(StripId id, float gain) noexcept {
    if (Entry* const entry = find(id)) entry->gain = gain;
    applyGains();
}

void Engine::setPan(StripId id, float pan) noexcept {
    if (Entry* const entry = find(id)) entry->strip->setPan(pan);
}

void Engine::setMuted(StripId id, bool muted) noexcept {
    if (Entry* const entry = find(id)) entry->isMuted = muted;
    applyGains();
}

void Engine::setSoloed(StripId id, bool soloed) noexcept {
    if (Entry* const entry = find(id)) entry->isSoloed = soloed;
    applyGains();
}

// The transport has stopped there, or was told to go there. A strip that was added meanwhile has
// played nothing, and may be longer or shorter.
bool Engine::isAtEnd() const noexcept {
    const bool hasStopped = m_playhead.isAtEnd();
    const bool goesBack = route().framesToJump(position()) != Route::kNever;
    return m_atEnd == AtEnd::Stays &&
           std::all_of(m_strips.begin(), m_strips.end(), [&](const Entry& entry) {
               const Strip& strip = *entry.strip;
               const bool isOver =
                   strip.isDrained() || (strip.format().lengthUnknown && strip.framesPlayed() > 0);
               return entry.isUnwanted || (hasStopped && isOver) ||
                      (!goesBack && strip.endsBefore(position()));
           });
}

void Engine::setPlaying(bool plays) {
    if (plays && !isPlaying() && isAtEnd()) locate(route().loops ? route().loopBegin : 0);
    m_playhead.setPlaying(plays);
}

void Engine::travel(const Route& route) {
    const Route& numbered = m_playhead.travel(route);
    for (const Entry& entry : m_strips)
        entry.strip->follow(numbered);
    m_readers.wake();
}

void Engine::locate(std::int64_t frame) {
    Route route = m_playhead.route();
    route.start = std::max<std::int64_t>(frame, 0);
    travel(route);
}

void Engine::setLoop(bool loops, std::int64_t begin, std::int64_t end) {
    Route route = m_playhead.route();
    route.loopBegin = std::max<std::int64_t>(begin, 0);
    route.loopEnd = std::max(end, route.loopBegin);
    const auto frames = static_cast<double>(route.loopEnd - route.loopBegin);
    route.loops = loops && frames >= kShortestLoopSeconds * m_rate && frames >= 1.0;
    route.start = position();
    travel(route);
}

void Engine::setTempo(double beatsPerMinute) noexcept {
    Metre changed = metre();
    changed.setTempo(beatsPerMinute);
    m_metre.store(changed.packed(), std::memory_order_relaxed);
}

void Engine::setMeter(int beatsPerBar, int beatUnit) noexcept {
    Metre changed = metre();
    changed.setMeter(beatsPerBar, beatUnit);
    m_metre.store(changed.packed(), std::memory_order_relaxed);
}

BarBeatTick Engine::musicalPosition() const {
    return placeInMusic(position(), m_rate, metre());
}

std::vector<StripMeter> Engine::meters() {
    std::vector<StripMeter> meters;
    for (const Entry& entry : m_strips) {
        if (entry.removal) continue;
        StripMeter& meter = meters.emplace_back();
        meter.id = entry.id;
        meter.path = entry.strip->path();
        for (const LevelReading& level : entry.strip->takeLevels()) {
            meter.peaks.push_back(level.peak);
            meter.squares.push_back(level.meanSquare);
        }
        meter.peak = *std::max_element(meter.peaks.begin(), meter.peaks.end());
        meter.underruns = entry.strip->underruns();
        meter.muted = entry.isMuted;
        meter.ended = entry.strip->isDrained();
        meter.framesPlayed = entry.strip->framesPlayed();
        meter.framesTotal = entry.strip->framesTotal();
    }
    return meters;
}

OutputLevels Engine::takeOutputLevels() noexcept {
    OutputLevels levels;
    for (std::size_t i = 0; i < m_outputLevels.size(); ++i) {
        const LevelReading level = m_outputLevels[i].take();
        levels.peaks[i] = level.peak;
        levels.squares[i] = level.meanSquare;
    }
    return levels;
}

void Engine::feed(std::uint32_t frames) {
    for (const Entry& entry : m_strips) {
        while (!entry.strip->isReadyFor(frames) && entry.strip->feed()) {
        }
    }
}

}  // namespace veltra::console
