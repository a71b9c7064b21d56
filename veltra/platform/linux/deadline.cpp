// SPDX-License-Identifier: MIT
#include "veltra/platform/linux/deadline.h"

#include "veltra/platform/clock.h"

#include <algorithm>
#include <cerrno>
#include <cmath>

#include <poll.h>

namespace veltra {

namespace {

constexpr double kLongestSeconds = 24.0 * 60.0 * 60.0;
constexpr double kNanosecondsPerSecond = 1e9;

}  // namespace

Deadline::Deadline(double seconds) noexcept
    : m_nanoseconds(Clocks::current().monotonic().nanoseconds) {
    if (!(seconds > 0.0)) return;
    const double nanoseconds = std::min(seconds, kLongestSeconds) * kNanosecondsPerSecond;
    m_nanoseconds += static_cast<std::uint64_t>(nanoseconds);
}

double Deadline::secondsLeft() const noexcept {
    const std::uint64_t now = Clocks::current().monotonic().nanoseconds;
    if (now >= m_nanoseconds) return 0.0;
    return static_cast<double>(m_nanoseconds - now) / kNanosecondsPerSecond;
}

WaitResult waitFor(int descriptor, short events, const Deadline& deadline) noexcept {
    pollfd waited{descriptor, events, 0};
    for (;;) {
        const double milliseconds =
            std::clamp(std::ceil(deadline.secondsLeft() * 1000.0), 0.0, kLongestSeconds * 1000.0);
        const int count = ::poll(&waited, 1, static_cast<int>(milliseconds));
        if (count > 0) return WaitResult::Ready;
        if (count == 0) return WaitResult::TimedOut;
        if (errno != EINTR && errno != EAGAIN) return WaitResult::Failed;
    }
}

}  // namespace veltra
