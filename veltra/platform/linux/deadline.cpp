// SPDX-License-Identifier: MIT
#include "veltra/platform/linux/deadline.h"

#include "veltra/platform/clock.h"

#include <algorithm>
#include <cerrno>

#include <poll.h>

namespace veltra {

namespace {

constexpr Nanoseconds kLongest = seconds(86'400.0);

}  // namespace

Deadline::Deadline(Nanoseconds time) noexcept
    : m_moment(Clocks::current().monotonic().moment() + std::clamp(time, Nanoseconds(), kLongest)) {
}

Nanoseconds Deadline::timeLeft() const noexcept {
    return std::max(m_moment - Clocks::current().monotonic().moment(), Nanoseconds());
}

WaitResult waitFor(int descriptor, short events, const Deadline& deadline) noexcept {
    pollfd waited{descriptor, events, 0};
    for (;;) {
        const Nanoseconds left = std::min(deadline.timeLeft(), kLongest);
        const int count = ::poll(&waited, 1, static_cast<int>(left.wholeMilliseconds()));
        if (count > 0) return WaitResult::Ready;
        if (count == 0) return WaitResult::TimedOut;
        if (errno != EINTR && errno != EAGAIN) return WaitResult::Failed;
    }
}

}  // namespace veltra
