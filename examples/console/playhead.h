// SPDX-License-Identifier: MIT
// The moving part of the transport: where it is, whether it moves, and the fade with which it stops
// and starts.
//
// The main thread says what is wanted: to move or not, and a route. The audio thread takes it up
// with the next block: it fades out over 5 ms, moving on meanwhile; then it stands still until all
// strips hold frames of the new route, and fades in from the first of them. Nobody waits for
// anybody. What lies at the very beginning, and a jump back inside a loop, is played as it is.
#pragma once

#include "glide.h"
#include "route.h"
#include "veltra/audio/handover.h"

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace veltra::console {

class Playhead {
public:
    // `rate` in frames a second. At the beginning, standing still unless `plays`.
    Playhead(std::int32_t rate, bool plays);

    // All of these. Thread: main.
    void setPlaying(bool plays) noexcept;
    // What is wanted; becomes false by itself at the end of everything.
    bool isPlaying() const noexcept { return m_plays.load(std::memory_order_relaxed); }
    // Whether it stands at the end of everything.
    bool isAtEnd() const noexcept;
    // Goes to the route's start. Gives it a new number and answers it.
    const Route& travel(const Route& route);
    const Route& route() const noexcept { return m_route; }  // the last one
    std::int64_t rolled() const noexcept;                    // frames played on it
    std::int64_t position() const noexcept;  // on the transport; of a route to come, its start

    // All that follows. Thread: audio. Realtime-safe: yes.
    void takeNews() noexcept;
    bool moves() const noexcept { return m_moves; }
    // While it stands: starts if that is wanted and the strips are ready, or when it has waited for
    // them for a second. `frames` are those of the silent block that it would be else.
    bool tryToStart(bool areStripsReady, std::uint32_t frames) noexcept;
    // While it moves: how many of the next `frames` can be rendered in one piece.
    std::uint32_t framesInOnePiece(std::uint32_t frames) const noexcept;
    // The fade for that piece.
    const Glide& gate() const noexcept { return m_gate; }
    // When it has been rendered.
    void advance(std::uint32_t frames) noexcept;
    // Everything has come to its end: stands still, and is no longer wanted to move.
    void stopAtEnd() noexcept;

    const Route& routeNow() const noexcept { return m_now; }
    std::int64_t rolledNow() const noexcept { return m_rolledNow; }
    std::int64_t place() const noexcept { return m_place; }

private:
    void follow(const Route& route) noexcept;
    void publish() noexcept;

    const std::int64_t m_patience;  // frames of silence, waiting for strips
    Route m_route;                  // main thread only

    // Audio thread only.
    Route m_now;
    Route m_next;
    bool m_hasNext = false;
    bool m_moves = false;
    std::int64_t m_rolledNow = 0;
    std::int64_t m_place = 0;
    std::int64_t m_waited = 0;
    Glide m_gate;

    Handover<Route> m_routes;          // main thread to audio thread
    std::atomic<bool> m_plays;         // main sets and clears, audio clears
    std::atomic<bool> m_atEnd{false};  // audio thread to main thread, like those below
    std::atomic<std::int64_t> m_position{0};
    std::atomic<std::int64_t> m_rolled{0};
    std::atomic<std::uint16_t> m_followed{0};  // of the three above: the number of their route

    static_assert(std::atomic<std::int64_t>::is_always_lock_free);
};

}  // namespace veltra::console
