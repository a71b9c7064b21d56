// SPDX-License-Identifier: MIT
// A moment on the monotonic clock, and waiting for a descriptor until then at the longest.
#pragma once

#include "veltra/base/time.h"

namespace veltra {

class Deadline {
public:
    // `time` from now. A deadline of 0 or a negative time has passed at once; more than a day
    // counts as a day.
    explicit Deadline(Nanoseconds time) noexcept;

    Nanoseconds timeLeft() const noexcept;  // 0 once passed
    bool hasPassed() const noexcept { return timeLeft() == Nanoseconds(); }

private:
    Moment m_moment;
};

enum class WaitResult { Ready, TimedOut, Failed };

// Waits until `descriptor` can be read or written (`events`: POLLIN, POLLOUT), has hung up, or the
// deadline has passed. Signals do not end the wait. When the clock stands still, one undisturbed
// wait of the time that was left counts as the deadline, so that the wait ends all the same.
WaitResult waitFor(int descriptor, short events, const Deadline& deadline) noexcept;

}  // namespace veltra
