// SPDX-License-Identifier: MIT
#include "valve.h"

#include "veltra/platform/clock.h"

#include <algorithm>
#include <chrono>
#include <thread>

namespace veltra::console {

namespace {

// An output may fill its buffers, and its clock is not ours.
constexpr double kSecondsAhead = 1.0;
constexpr double kBlocksAhead = 2.0;  // where that is more
constexpr double kMostSpeed = 1.5;

Moment now() noexcept {
    return Clocks::current().monotonic().moment();
}

}  // namespace

Valve::Valve(Engine& engine, std::int32_t rate, std::uint32_t blockFrames) noexcept
    : m_engine(engine),
      m_rate(rate),
      m_mostCredit(std::max(kSecondsAhead * rate, kBlocksAhead * blockFrames)),
      m_credit(m_mostCredit),
      m_lastCall(now()) {}

// Time earns credit, a little faster than it is spent at the right pace.
bool Valve::isInTime(std::uint32_t frames) noexcept {
    const Moment call = now();
    const double earned = (call - m_lastCall).seconds() * m_rate * kMostSpeed;
    m_lastCall = call;
    m_credit = std::min(m_credit + earned, m_mostCredit);
    if (m_credit < frames) return false;
    m_credit -= frames;
    return true;
}

bool Valve::render(void* valve, float* const* outputs, std::uint32_t outputCount,
                   std::uint32_t frames) noexcept {
    auto& self = *static_cast<Valve*>(valve);
    self.m_frames.fetch_add(frames, std::memory_order_relaxed);
    const bool isInTime = self.isInTime(frames);
    State found = State::Open;
    if (self.m_state.compare_exchange_strong(found, isInTime ? State::Busy : State::Open,
                                             std::memory_order_acquire) &&
        isInTime) {
        self.m_engine.processBlock(outputs, outputCount, frames);
        self.m_state.store(State::Open, std::memory_order_release);  // with shut()
    } else {
        for (std::uint32_t out = 0; out < outputCount; ++out)
            std::fill_n(outputs[out], frames, 0.0F);
    }
    return found != State::Shut;
}

bool Valve::shut() noexcept {
    constexpr std::chrono::milliseconds kPause{1};
    for (int attempts = 0; attempts < 500; ++attempts) {
        State found = State::Open;
        if (m_state.compare_exchange_strong(found, State::Shut, std::memory_order_acquire) ||
            found == State::Shut) {
            return true;
        }
        std::this_thread::sleep_for(kPause);
    }
    return false;
}

}  // namespace veltra::console
