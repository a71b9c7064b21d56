// SPDX-License-Identifier: MIT
// The two clocks that the framework reads. Everything that tells or measures time asks them, so
// that a host or a test can install its own.
#pragma once

#include "veltra/base/installable.h"
#include "veltra/base/time.h"
#include "veltra/export.h"

#include <cstdint>

namespace veltra {

// A moment of civil time: seconds since 1970-01-01 00:00:00 UTC and the nanoseconds within that
// second (0 to 999,999,999, also before 1970).
struct WallTime {
    std::int64_t seconds = 0;      // negative before 1970
    std::int32_t nanoseconds = 0;  // later than `seconds`, before 1970 too
};

// What came of one attempt to read the monotonic clock: a moment, or why there is none.
class ClockReading {
public:
    // The clock was read and told this moment.
    constexpr ClockReading(Moment moment) noexcept : m_moment(moment) {}

    // The clock could not be read. `errorNumber` is the system's (an errno value), not 0.
    static constexpr ClockReading failed(int errorNumber) noexcept {
        ClockReading reading{Moment()};
        reading.m_errorNumber = errorNumber;
        return reading;
    }

    // Whether the clock could not be read.
    constexpr bool hasFailed() const noexcept { return m_errorNumber != 0; }
    constexpr int errorNumber() const noexcept { return m_errorNumber; }  // 0: none

    // The clock's start when it could not be read, so that a caller who does not mind finds that no
    // time passes.
    constexpr Moment moment() const noexcept { return m_moment; }

private:
    Moment m_moment;
    int m_errorNumber = 0;
};

class Clocks;
extern template class VELTRA_EXPORT Installable<const Clocks>;

// Install clocks while nobody measures an interval.
class VELTRA_EXPORT Clocks : public Installable<const Clocks> {
public:
    virtual ~Clocks();

    // Never goes back, and ignores changes of the date.
    // Thread: any. Realtime-safe: yes, with the platform's own clocks.
    virtual ClockReading monotonic() const noexcept = 0;

    // The date and time of day.
    // Thread: any. Realtime-safe: yes, with the platform's own clocks.
    virtual WallTime wall() const noexcept = 0;
};

}  // namespace veltra
