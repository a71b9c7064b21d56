// SPDX-License-Identifier: MIT
// Between an output and the engine: once it is shut, the output can call as long as it likes, and
// the engine is not touched any more.
//
// The output's audio thread enters from Open to Busy and leaves to Open again; the main thread goes
// from Open to Shut. Both by compare-and-swap, so there is one winner, and after Shut nobody
// enters. The acquire of either side is with the release of leaving: what one output's thread did
// to the engine happened before another's begins.
#pragma once

#include "engine.h"

#include <atomic>
#include <cstdint>

namespace veltra::console {

class Valve {
public:
    explicit Valve(Engine& engine) noexcept : m_engine(engine) {}
    Valve(const Valve&) = delete;
    Valve& operator=(const Valve&) = delete;

    // AudioOutput's callback; `valve` is a Valve. Silence and false when it is shut.
    // Thread: audio. Realtime-safe: yes.
    static bool render(void* valve, float* const* outputs, std::uint32_t outputCount,
                       std::uint32_t frames) noexcept;

    // Waits for the block in progress, at most half a second. Answers whether it is shut.
    // Thread: main.
    bool shut() noexcept;

    // Rendered so far. Thread: any.
    std::uint64_t frames() const noexcept { return m_frames.load(std::memory_order_relaxed); }

private:
    enum class State { Open, Busy, Shut };

    Engine& m_engine;
    std::atomic<State> m_state{State::Open};
    std::atomic<std::uint64_t> m_frames{0};  // audio thread counts

    static_assert(std::atomic<State>::is_always_lock_free);
};

}  // namespace veltra::console
