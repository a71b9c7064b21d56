// SPDX-License-Identifier: MIT
// A moment on the monotonic clock, and waiting for a descriptor no longer than until then.
#pragma once

#include <cstdint>

namespace veltra {

class Deadline {
public:
    // `seconds` from now. A deadline of 0, a negative number or a NaN has passed at once; more than
    // a day counts as a day.
    explicit Deadline(double seconds) noexcept;

    double secondsLeft() const noexcept;  // 0 once passed
    bool hasPassed() const noexcept { return secondsLeft() <= 0.0; }

private:
    std::uint64_t m_nanoseconds = 0;
};

enum class WaitResult { Ready, TimedOut, Failed };

// Waits until `descriptor` can be read or written (`events`: POLLIN, POLLOUT), has hung up, or the
// deadline has passed. Signals do not end the wait. With a clock that stands still, one undisturbed
// wait of the time that was left counts as the deadline, so that it ends all the same.
WaitResult waitFor(int descriptor, short events, const Deadline& deadline) noexcept;

}  // namespace veltra
