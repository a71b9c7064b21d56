// SPDX-License-Identifier: MIT
// Between an output and the engine: before it is opened and after it is shut, the output can call
// as long as it likes, and the engine is not touched. An output that does not wait for real time
// gets silence meanwhile, so that the music does not run away with it.
//
// The main thread goes from Waiting to Open, once. The output's audio thread enters from Open to
// Busy and leaves to Open again; the main thread goes from Open to Shut. Both by compare-and-swap,
// so there is one winner, and after Shut nobody enters. Leaving and opening release, entering and
// shutting acquire: what one output's thread did to the engine happened before another's begins.
#pragma once

#include "engine.h"
#include "veltra/base/time.h"

#include <atomic>
#include <cstdint>

namespace veltra::console {

class Valve {
public:
    // `rate` in frames a second; blocks are mostly of `blockFrames`.
    Valve(Engine& engine, std::int32_t rate, std::uint32_t blockFrames) noexcept;
    Valve(const Valve&) = delete;
    Valve& operator=(const Valve&) = delete;

    // AudioOutput's callback; `valve` is a Valve. Silence when it is not open; false when it is
    // shut.
    // Thread: audio. Realtime-safe: yes.
    static bool render(void* valve, float* const* outputs, std::uint32_t outputCount,
                       std::uint32_t frames) noexcept;

    // Thread: main.
    void open() noexcept { m_state.store(State::Open, std::memory_order_release); }

    // Waits for the block in progress, at most half a second. Answers whether it is shut.
    // Thread: main.
    bool shut() noexcept;

    // That the output has asked for so far. Thread: any.
    std::uint64_t frames() const noexcept { return m_frames.load(std::memory_order_relaxed); }

private:
    enum class State { Waiting, Open, Busy, Shut };

    bool isInTime(std::uint32_t frames) noexcept;

    Engine& m_engine;
    const double m_rate;
    const double m_mostCredit;
    double m_credit;    // frames that may be asked for at once; audio thread only
    Moment m_lastCall;  // audio thread only
    std::atomic<State> m_state{State::Waiting};
    std::atomic<std::uint64_t> m_frames{0};  // audio thread counts

    static_assert(std::atomic<State>::is_always_lock_free);
};

}  // namespace veltra::console
