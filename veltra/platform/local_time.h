// SPDX-License-Identifier: MIT
// Civil time in the zone of the user: what a clock on the wall shows.
#pragma once

#include "veltra/base/installable.h"
#include "veltra/export.h"
#include "veltra/platform/clock.h"

#include <cstdint>
#include <optional>

namespace veltra {

// A date and a time of day, with no zone of its own.
struct CivilTime {
    std::int32_t year = 1970;  // of the Gregorian calendar
    std::int32_t month = 1;    // 1 to 12
    std::int32_t day = 1;      // 1 to 31
    std::int32_t hour = 0;     // 0 to 23
    std::int32_t minute = 0;   // 0 to 59
    std::int32_t second = 0;   // 0 to 59, or 60 in a zone that counts leap seconds

    // Whether all fields are the same.
    bool operator==(const CivilTime&) const = default;
};

class LocalTime;
extern template class VELTRA_EXPORT Installable<const LocalTime>;

class VELTRA_EXPORT LocalTime : public Installable<const LocalTime> {
public:
    virtual ~LocalTime();

    // `moment` in the Gregorian calendar and the local zone; nothing when the system cannot tell.
    // A change of the variable TZ shows at once, one of the system's setting within a quarter of an
    // hour.
    // Thread: any. Realtime-safe: no (it asks the system once in a quarter of an hour, under the
    // C library's lock).
    virtual std::optional<CivilTime> civilTime(WallTime moment) const noexcept = 0;
};

}  // namespace veltra
