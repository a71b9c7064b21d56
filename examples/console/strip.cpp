// SPDX-License-Identifier: MIT
#include "strip.h"

#include <algorithm>

namespace veltra::console {

namespace {

// Frames that are faded at a time: they stay in the nearest cache until they are mixed.
constexpr std::size_t kPieceFrames = 512;

constexpr std::uint64_t kNoEnd = ~std::uint64_t{0};  // of no route that is ever played so long

std::vector<Weights> foldOf(const FileFormat& format) {
    std::vector<Weights> fold;
    const auto channels = static_cast<std::size_t>(format.channels);
    for (std::size_t channel = 0; channel < channels; ++channel)
        fold.push_back(foldWeights(format.plan, channel, channels));
    return fold;
}

std::size_t glideFrames(const StripSetup& setup, const FileFormat& format) {
    return Glide::framesAt(setup.outputRate > 0.0 ? setup.outputRate : format.rate);
}

}  // namespace

Strip::Strip(std::unique_ptr<AudioFile> file, const StripSetup& setup)
    : m_stream(std::move(file), setup.outputRate),
      m_route(setup.route),
      m_place(setup.route.placeAt(setup.rolled)),
      m_offset(setup.offset),
      m_places(static_cast<std::size_t>(format().channels)),
      m_ring(m_places.size(), std::max(setup.ringFrames, kChunkFrames)),
      m_reserve(setup.reserve),
      m_fold(foldOf(format())),
      m_played(setup.route.number),
      m_firstRolled(setup.rolled),
      m_beginsMidway(setup.rolled > 0 && m_place != setup.offset),
      m_fader(glideFrames(setup, format()), 0.0F),
      m_weights{Glide(glideFrames(setup, format()), 1.0F),
                Glide(glideFrames(setup, format()), 1.0F)},
      m_wanted(setup.route.number),
      m_start(mark(0, setup.route.number)),
      m_end(kNoEnd),
      m_levels(m_places.size()) {
    if (m_place != m_offset) m_stream.locate(m_place - m_offset);
}

void Strip::follow(const Route& route) {
    m_wanted.store(route.number, std::memory_order_relaxed);
    m_routes.change([&route](Route& offered, bool /*isFresh*/) { offered = route; });
}

bool Strip::feed() {
    if (const auto route = m_routes.take()) {
        m_route = *route;
        m_place = m_route.start;
        m_inputEnded = false;
        m_stream.locate(m_place - m_offset);
        m_start.store(mark(m_ring.written(), m_route.number),
                      std::memory_order_release);  // with framesReady()
    }
    if (m_inputEnded) return false;
    const std::int64_t toJump = m_route.framesToJump(m_place);
    const std::size_t room = std::min(m_ring.writable(), kChunkFrames);
    const auto frames =
        static_cast<std::size_t>(std::min<std::int64_t>(static_cast<std::int64_t>(room), toJump));
    if (frames == 0) return false;
    for (std::size_t c = 0; c < m_places.size(); ++c)
        m_places[c] = m_ring.writePlace(c);
    // Behind the file's end a loop goes on with silence.
    const bool hasEnded = m_stream.hasEnded();
    std::size_t made = hasEnded ? 0 : m_stream.make(m_places.data(), frames);
    if (hasEnded && toJump != Route::kNever) {
        for (float* const place : m_places)
            std::fill_n(place, frames, 0.0F);
        made = frames;
    }
    m_ring.publish(made);
    const bool jumps = static_cast<std::int64_t>(made) == toJump;
    m_place = m_route.after(m_place, static_cast<std::int64_t>(made));
    if (jumps) {
        m_stream.locate(m_place - m_offset);
    } else if (m_stream.hasEnded() && toJump == Route::kNever) {
        m_inputEnded = true;
        m_end.store(mark(m_ring.written(), m_route.number),
                    std::memory_order_release);  // with hasInputEnded()
    }
    return true;
}

bool Strip::isReadyFor(std::size_t frames) const noexcept {
    if (m_wanted.load(std::memory_order_relaxed) != m_route.number) return false;
    return m_inputEnded || m_ring.readable() >= frames;
}

void Strip::render(void* strip, std::uint32_t message, void* data) noexcept {
    auto& self = *static_cast<Strip*>(strip);
    if (message == kRenderMessage) self.mix(*static_cast<Block*>(data));
    if (message == kPrepareMessage) self.prepare(*static_cast<Preparation*>(data));
}

// Takes the route up when the feeder has, and drops what was read for the one before.
void Strip::adopt(std::uint16_t route) noexcept {
    const std::uint64_t start = m_start.load(std::memory_order_acquire);  // with feed()
    if (route == m_played || routeOf(start) != route) return;
    m_played = route;
    m_first = m_seen = start >> 16U;
    m_firstRolled = 0;
    m_isFresh = true;
    m_beginsMidway = false;
    for (ChannelLevel& level : m_levels)
        level.interrupt();
    m_ring.consume(static_cast<std::size_t>(m_first - m_ring.consumed()));
    m_drained.store(false, std::memory_order_release);  // with isDrained()
}

bool Strip::hasInputEnded() const noexcept {
    const std::uint64_t end = m_end.load(std::memory_order_acquire);  // with feed()
    return end != kNoEnd && routeOf(end) == m_played;
}

// Of the route that is played.
std::size_t Strip::framesReady() noexcept {
    const std::uint64_t written = m_ring.consumed() + m_ring.readable();
    // After the ring: see the head of strip.h.
    const std::uint64_t start = m_start.load(std::memory_order_acquire);  // with feed()
    if (routeOf(start) == m_played) m_seen = written;
    return static_cast<std::size_t>(m_seen - m_ring.consumed());
}

void Strip::prepare(Preparation& preparation) noexcept {
    adopt(preparation.route);
    const bool ended = hasInputEnded();
    const bool isReady =
        m_played == preparation.route &&
        (ended || framesReady() >= std::min(preparation.frames, m_ring.capacity()));
    preparation.isReady = preparation.isReady && isReady;
    if (m_leaves.load(std::memory_order_relaxed)) m_silent.store(true, std::memory_order_relaxed);
}

void Strip::mix(Block& block) noexcept {
    adopt(block.route);
    const bool isOnRoute = m_played == block.route;
    // The end first: what was published before it was written is then seen by framesReady().
    const bool ended = isOnRoute && hasInputEnded();
    std::size_t ready = isOnRoute ? framesReady() : 0;
    const auto playedOf = [this] { return static_cast<std::int64_t>(m_ring.consumed() - m_first); };
    std::int64_t ahead = isOnRoute ? m_firstRolled + playedOf() - block.rolled : 0;
    bool isInTime = isOnRoute && ahead >= 0;
    if (ahead < 0) {
        const std::size_t owed = std::min(ready, static_cast<std::size_t>(-ahead));
        m_ring.consume(owed);
        ready -= owed;
        ahead += static_cast<std::int64_t>(owed);
    }
    const bool leaves = m_leaves.load(std::memory_order_relaxed);
    const auto wait = static_cast<std::size_t>(std::clamp<std::int64_t>(ahead, 0, block.frames));
    const std::size_t due = block.frames - wait;
    const std::size_t playable = ahead < 0 ? 0 : std::min(ready, due);
    const bool starves = !ended && ready < due + m_reserve;
    const float gain = m_gain.load(std::memory_order_relaxed);
    takePan();
    if (m_isFresh && playable > 0) {
        m_fader.jumpTo(isInTime && !m_beginsMidway ? gain : 0.0F);
        m_isFresh = false;
    }
    m_fader.moveTo(starves || leaves ? 0.0F : gain);
    mixFrames(block, wait, playable);

    const bool isAtEnd = ended && playable < due;
    if (isAtEnd) {
        m_drained.store(true, std::memory_order_release);  // with isDrained()
        block.played = std::max(block.played, static_cast<std::uint32_t>(wait + playable));
    } else {
        block.hasMore = true;
        if (playable < due) {
            m_fader.jumpTo(0.0F);  // nothing is to be heard of it any more
            m_missedFrames.fetch_add(due - playable, std::memory_order_relaxed);
            m_underruns.fetch_add(1, std::memory_order_relaxed);
        }
    }
    if (leaves && (isAtEnd || m_fader.standsAt(0.0F)))
        m_silent.store(true, std::memory_order_relaxed);
    m_playedTo.store(std::max<std::int64_t>(block.position + block.frames - m_offset, 0),
                     std::memory_order_relaxed);
}

void Strip::takePan() noexcept {
    const float pan = m_pan.load(std::memory_order_relaxed);
    if (pan == m_panNow) return;
    m_panNow = pan;
    const Weights weights = panWeights(static_cast<double>(pan));
    m_weights[0].moveTo(weights.left);
    m_weights[1].moveTo(weights.right);
    if (!m_isFresh) return;
    m_weights[0].jumpTo(weights.left);
    m_weights[1].jumpTo(weights.right);
}

// Mixes the next `frames` of the ring into the block from frame `done` on, in pieces through which
// each gain is a straight line.
void Strip::mixFrames(const Block& block, std::size_t done, std::size_t frames) noexcept {
    const bool isHeard = block.outputCount > 0;
    while (frames > 0) {
        std::size_t piece = std::min(frames, m_ring.readableInOnePiece());
        if (isHeard && !m_fader.standsAt(0.0F)) {
            piece = m_fader.limit(std::min(piece, kPieceFrames));
            for (const Glide& weight : m_weights)
                piece = weight.limit(piece);
            mixPiece(block, done, piece);
        } else if (m_fader.moves()) {
            piece = m_fader.limit(piece);
        }
        m_fader.advance(piece);
        for (Glide& weight : m_weights)
            weight.advance(std::min(piece, weight.framesLeft()));
        m_ring.consume(piece);
        done += piece;
        frames -= piece;
    }
}

void Strip::mixPiece(const Block& block, std::size_t done, std::size_t frames) noexcept {
    std::array<float, kPieceFrames> faded;  // NOLINT(cppcoreguidelines-pro-type-member-init): as
                                            // much of it as is read is written before
    for (std::size_t c = 0; c < m_places.size(); ++c) {
        const float* samples = m_ring.readPlace(c);
        if (m_fader.moves()) {
            scale(faded.data(), samples, frames, m_fader.ramp());
            samples = faded.data();
        } else if (!m_fader.standsAt(1.0F)) {
            scale(faded.data(), samples, frames, m_fader.value());
            samples = faded.data();
        }
        m_levels[c].add(samples, frames, block.measuresTruePeaks);
        if (block.outputCount == 1) {
            // The mean of what the two outputs would have.
            for (std::size_t output = 0; output < 2; ++output)
                add(block.outputs[0] + done, samples, frames,
                    {m_fold[c].left / 2.0F, m_fold[c].right / 2.0F}, output);
        } else {
            for (std::size_t output = 0; output < 2; ++output)
                add(block.outputs[output] + done, samples, frames, m_fold[c], output);
        }
    }
}

// Adds what an output has of the samples.
void Strip::add(float* mix, const float* samples, std::size_t frames, const Weights& fold,
                std::size_t output) const noexcept {
    const float share = output == 0 ? fold.left : fold.right;
    const Glide& weight = m_weights[output];
    if (share == 0.0F) return;
    if (weight.moves()) {
        addToMix(mix, samples, frames, weight.ramp(share));
    } else {
        addToMix(mix, samples, frames, weight.value() * share);
    }
}

std::vector<LevelReading> Strip::takeLevels() {
    std::vector<LevelReading> levels(m_levels.size());
    std::transform(m_levels.begin(), m_levels.end(), levels.begin(),
                   [](ChannelLevel& level) { return level.take(); });
    return levels;
}

std::uint64_t Strip::framesPlayed() const noexcept {
    const double frames =
        static_cast<double>(m_playedTo.load(std::memory_order_relaxed)) * m_stream.speed();
    const auto whole = static_cast<std::uint64_t>(frames);
    return framesTotal() == 0 ? whole : std::min(whole, framesTotal());
}

}  // namespace veltra::console
