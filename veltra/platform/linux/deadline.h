// SPDX-License-Identifier: MIT
// A moment on the monotonic clock, and waiting for a descriptor no longer than until then.
#pragma once

#include "veltra/base/time.h"

namespace veltra {

class Deadline {
public:
    // After `time` from now. A time that is not above 0 has passed at once; more than a day counts
    // as a day.
    explicit Deadline(Nanoseconds time) noexcept;

    Nanoseconds timeLeft() const noexcept;  // 0 once passed
    bool hasPassed() const noexcept { return timeLeft() == Nanoseconds(); }

private:
    Moment m_moment;
};

enum class WaitResult { Ready, TimedOut, Failed };

// Waits until `descriptor` can be read or written (`events`: POLLIN, POLLOUT), has hung up, or the
// deadline has passed. Signals do not end the wait. With a clock that stands still, one undisturbed
// wait of the time that was left counts as the deadline, so that it ends all the same.
WaitResult waitFor(int descriptor, short events, const Deadline& deadline) noexcept;

}  // namespace veltra
