// SPDX-License-Identifier: MIT
#include "playhead.h"

#include <algorithm>

namespace veltra::console {

Playhead::Playhead(std::int32_t rate, bool plays)
    : m_patience(rate), m_gate(Glide::framesAt(rate), 0.0F), m_plays(plays) {}

void Playhead::setPlaying(bool plays) noexcept {
    m_plays.store(plays, std::memory_order_relaxed);  // with takeNews(): the flag is all there is
}

bool Playhead::isAtEnd() const noexcept {
    return m_followed.load(std::memory_order_acquire) == m_route.number &&  // with follow()
           m_atEnd.load(std::memory_order_relaxed);
}

const Route& Playhead::travel(const Route& route) {
    const auto number = static_cast<std::uint16_t>(m_route.number + 1U);
    m_route = route;
    m_route.number = number;
    m_routes.change([this](Route& offered, bool /*isFresh*/) { offered = m_route; });
    return m_route;
}

std::int64_t Playhead::rolled() const noexcept {
    if (m_followed.load(std::memory_order_acquire) != m_route.number) return 0;  // with follow()
    return m_rolled.load(std::memory_order_relaxed);
}

std::int64_t Playhead::position() const noexcept {
    if (m_followed.load(std::memory_order_acquire) != m_route.number) return m_route.start;
    return m_position.load(std::memory_order_relaxed);
}

void Playhead::takeNews() noexcept {
    if (const auto route = m_routes.take()) {
        m_next = *route;
        m_hasNext = true;
    }
    const bool goesOn = m_plays.load(std::memory_order_relaxed) && !m_hasNext;
    if (m_moves) {
        m_gate.moveTo(goesOn ? 1.0F : 0.0F);
        m_moves = !m_gate.standsAt(0.0F);
    }
    if (!m_moves && m_hasNext) follow(m_next);
}

void Playhead::follow(const Route& route) noexcept {
    m_hasNext = false;
    if (route.start < m_place) m_atEnd.store(false, std::memory_order_relaxed);
    m_now = route;
    m_rolledNow = 0;
    m_place = route.start;
    m_waited = 0;
    publish();
    m_followed.store(route.number, std::memory_order_release);  // with the main thread's questions
}

void Playhead::publish() noexcept {
    m_position.store(m_place, std::memory_order_relaxed);
    m_rolled.store(m_rolledNow, std::memory_order_relaxed);
}

bool Playhead::tryToStart(bool areStripsReady, std::uint32_t frames) noexcept {
    if (!m_plays.load(std::memory_order_relaxed)) return false;
    if (!areStripsReady && m_waited < m_patience) {
        m_waited += frames;
        return false;
    }
    m_waited = 0;
    m_moves = true;
    m_atEnd.store(false, std::memory_order_relaxed);
    const bool isBeginning = m_place == 0 && m_rolledNow == 0;
    m_gate.jumpTo(isBeginning ? 1.0F : 0.0F);
    m_gate.moveTo(1.0F);
    return true;
}

std::uint32_t Playhead::framesInOnePiece(std::uint32_t frames) const noexcept {
    const auto most = static_cast<std::int64_t>(m_gate.limit(frames));
    return static_cast<std::uint32_t>(std::min(most, m_now.framesToJump(m_place)));
}

void Playhead::advance(std::uint32_t frames) noexcept {
    m_place = m_now.after(m_place, frames);
    m_rolledNow += frames;
    m_gate.advance(frames);
    publish();
}

void Playhead::stopAtEnd() noexcept {
    m_moves = false;
    m_gate.jumpTo(0.0F);
    m_plays.store(false, std::memory_order_relaxed);
    m_atEnd.store(true, std::memory_order_relaxed);
}

}  // namespace veltra::console
