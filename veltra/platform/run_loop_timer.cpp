// SPDX-License-Identifier: MIT
#include "veltra/platform/run_loop_timer.h"

#include "veltra/platform/run_loop.h"

namespace veltra {

namespace {
constexpr Nanoseconds kShortestInterval = microseconds(100);
}  // namespace

RunLoopTimer::RunLoopTimer(Making /*only RunLoop makes them*/, const TimerRequest& request) noexcept
    : m_target(request.target),
      m_action(request.action),
      m_userInfo(request.userInfo),
      m_interval(request.interval > Nanoseconds() ? request.interval : kShortestInterval),
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

Moment RunLoopTimer::nextTickAfter(Moment now) const noexcept {
    return now + (m_interval - (now - m_due) % m_interval);
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
