// SPDX-License-Identifier: MIT
// A stopwatch on the date and time of day, to the microsecond.
#pragma once

#include "veltra/export.h"

#include <cstdint>

namespace veltra {

// Thread: any, one at a time for each marker. Realtime-safe: yes, with the platform's own clocks.
class VELTRA_EXPORT QkTimeMarker {
public:
    // Sets the marker.
    QkTimeMarker() noexcept;

    // Sets the marker to now.
    void setMarker() noexcept;

    // Seconds since the marker was set; negative when the date was set back meanwhile. A float
    // holds microseconds exactly only for the first few seconds.
    float secondsSinceMarker() const noexcept;

private:
    // Signed 32-bit by contract. Differences are taken modulo 2 to the 32nd, so the seconds may
    // wrap, as they do in January 2038: spans of less than 68 years stay right.
    struct LogTime {
        std::int32_t seconds = 0;
        std::int32_t microseconds = 0;
    };

    static LogTime wallTime() noexcept;

    LogTime m_tLogTime;
};

}  // namespace veltra
