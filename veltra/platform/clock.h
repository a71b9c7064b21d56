// SPDX-License-Identifier: MIT
// The two clocks that the framework reads. Everything that tells or measures time asks here, so
// that a host or a test can put a clock of its own in their place.
#pragma once

#include "veltra/base/installable.h"
#include "veltra/export.h"

#include <cstdint>

namespace veltra {

// A moment of civil time: seconds since 1970-01-01 00:00:00 UTC and the nanoseconds within that
// second (0 to 999,999,999, also before 1970).
struct WallTime {
    std::int64_t seconds = 0;
    std::int32_t nanoseconds = 0;
};

// One reading of the monotonic clock. `error` is 0 or the system's error number (an errno value);
// with an error, `nanoseconds` is 0.
struct ClockReading {
    std::uint64_t nanoseconds = 0;
    int error = 0;
};

class Clocks;
extern template class VELTRA_EXPORT Installable<const Clocks>;

// Install clocks while nobody measures an interval.
class VELTRA_EXPORT Clocks : public Installable<const Clocks> {
public:
    virtual ~Clocks();

    // Nanoseconds since some fixed moment; never goes back, does not follow changes of the date.
    // Thread: any. Realtime-safe: yes, with the platform's own clocks.
    virtual ClockReading monotonic() const noexcept = 0;

    // The date and time of day.
    // Thread: any. Realtime-safe: yes, with the platform's own clocks.
    virtual WallTime wall() const noexcept = 0;
};

}  // namespace veltra
