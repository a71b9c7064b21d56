// SPDX-License-Identifier: MIT
#include "pace_watch.h"

#include <cmath>

namespace veltra::console {

namespace {

// Seconds.
constexpr double kLateLook = 0.5;
constexpr double kMostAhead = 1.0;
constexpr double kMostBehind = 1.2;
constexpr double kMostBehindAtStart = 1.5;
constexpr double kSteady = 0.3;
constexpr double kUntilForgiven = 4.0;

}  // namespace

Pace PaceWatch::look(Moment now, std::uint64_t frames) noexcept {
    const bool isLate = m_anchor && (now - m_lastLook).seconds() > kLateLook;
    m_lastLook = now;
    if (!m_anchor || isLate) {
        m_anchor = Mark{now, frames};
        return Pace::Steady;
    }
    const double passed = (now - m_anchor->time).seconds();
    const double played = static_cast<double>(frames - m_anchor->frames) / m_rate;
    const double lead = played - passed;
    if (lead > kMostAhead + m_block) return Pace::RunsAway;
    if (-lead > (m_hasStarted ? kMostBehind : kMostBehindAtStart) + m_block) return Pace::Stands;
    const bool isSteady = std::fabs(lead) < kSteady + m_block;
    if ((passed >= 1.0 + 2.0 * m_block && isSteady) || passed >= kUntilForgiven + 2.0 * m_block) {
        m_anchor = Mark{now, frames};
        m_hasStarted = true;
    }
    return Pace::Steady;
}

}  // namespace veltra::console
