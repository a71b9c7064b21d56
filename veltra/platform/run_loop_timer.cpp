// SPDX-License-Identifier: MIT
#include "veltra/platform/run_loop_timer.h"

#include "veltra/platform/run_loop.h"

#include <algorithm>
#include <cmath>

namespace veltra {

namespace {

constexpr double kShortestSeconds = 0.0001;

double correctedSeconds(double seconds) noexcept {
    return seconds > 0.0 ? seconds : kShortestSeconds;  // a NaN fails the comparison too
}

std::uint64_t toNanoseconds(double seconds, std::uint64_t never) noexcept {
    constexpr double kLongest = 4611686018427387904.0;  // 2 to the 62nd
    const double nanoseconds = seconds * 1e9;
    if (nanoseconds >= kLongest) return never;
    return std::max<std::uint64_t>(static_cast<std::uint64_t>(std::llround(nanoseconds)), 1);
}

}  // namespace

RunLoopTimer::RunLoopTimer(Making /*only RunLoop makes them*/, const TimerRequest& request) noexcept
    : m_target(request.target),
      m_action(request.action),
      m_userInfo(request.userInfo),
      m_seconds(correctedSeconds(request.seconds)),
      m_interval(toNanoseconds(m_seconds, kNever)),
      m_repeats(request.repeats),
      m_modes(request.modes) {}

void RunLoopTimer::invalidate() noexcept {
    if (m_loop != nullptr) m_loop->remove(*this);  // may have been the last owner
}

void RunLoopTimer::fire() {
    if (!isValid()) return;
    const std::shared_ptr<RunLoopTimer> self = shared_from_this();
    if (!m_repeats) invalidate();
    send();
}

std::uint64_t RunLoopTimer::later(std::uint64_t now, std::uint64_t interval) noexcept {
    return interval >= kNever - now ? kNever : now + interval;
}

std::uint64_t RunLoopTimer::nextTickAfter(std::uint64_t now) const noexcept {
    if (later(now, m_interval) == kNever) return kNever;
    return m_due + ((now - m_due) / m_interval + 1) * m_interval;
}

void RunLoopTimer::send() {
    // While its action runs a timer has no deadline, or a nested loop would spin on it.
    struct Firing {
        explicit Firing(RunLoopTimer& timer) noexcept : m_timer(timer), m_before(timer.m_isFiring) {
            m_timer.m_isFiring = true;
            announce();
        }
        Firing(const Firing&) = delete;
        Firing& operator=(const Firing&) = delete;
        ~Firing() {
            m_timer.m_isFiring = m_before;
            announce();
        }
        void announce() const noexcept {
            if (m_timer.m_loop != nullptr) m_timer.m_loop->announceDeadline();
        }
        RunLoopTimer& m_timer;
        const bool m_before;
    };
    const Firing firing(*this);
    m_action.send(m_target.get(), this);
}

}  // namespace veltra
