// SPDX-License-Identifier: MIT
#include "valve.h"

#include <algorithm>
#include <chrono>
#include <thread>

namespace veltra::console {

bool Valve::render(void* valve, float* const* outputs, std::uint32_t outputCount,
                   std::uint32_t frames) noexcept {
    auto& self = *static_cast<Valve*>(valve);
    State expected = State::Open;
    if (!self.m_state.compare_exchange_strong(expected, State::Busy, std::memory_order_acquire)) {
        for (std::uint32_t out = 0; out < outputCount; ++out)
            std::fill_n(outputs[out], frames, 0.0F);
        return false;
    }
    self.m_engine.processBlock(outputs, outputCount, frames);
    self.m_frames.fetch_add(frames, std::memory_order_relaxed);
    self.m_state.store(State::Open, std::memory_order_release);  // with shut()
    return true;
}

bool Valve::shut() noexcept {
    constexpr std::chrono::milliseconds kPause{1};
    for (int attempts = 0; attempts < 500; ++attempts) {
        State expected = State::Open;
        if (m_state.compare_exchange_strong(expected, State::Shut, std::memory_order_acquire) ||
            expected == State::Shut) {
            return true;
        }
        std::this_thread::sleep_for(kPause);
    }
    return false;
}

}  // namespace veltra::console
