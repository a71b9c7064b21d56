// SPDX-License-Identifier: MIT
// Where the parts of a meter lie in its frame, in whole device pixels.
#pragma once

#include "veltra/controls/level_meters/level_meter_look.h"
#include "veltra/ui/geometry.h"

#include <cstdint>

namespace veltra::detail {

// A rectangle of a meter: along it from the low end, across it from the left or the upper side.
struct MeterArea {
    std::int32_t low;
    std::int32_t high;
    std::int32_t near;
    std::int32_t far;

    MeterArea inset(std::int32_t by) const { return {low + by, high - by, near + by, far - by}; }
    MeterArea part(std::int32_t from, std::int32_t to) const { return {from, to, near, far}; }
    bool isEmpty() const { return low >= high || near >= far; }
};

struct MeterLayout {
    LevelMeterOrientation orientation = LevelMeterOrientation::Vertical;
    float scale = 1.0F;
    std::int32_t length = 0;  // of the frame
    MeterArea bar{};
    MeterArea light{};  // empty when there is no room for it

    // A frame too short for bar and clip light has the bar alone. A bar that does not fill its room
    // leaves it empty at the low end; looks of a fixed size lie at the low end and in the middle
    // across. `request` leaves the sizes open.
    static MeterLayout make(Size frame, const LevelMeterLook& bar, const LevelMeterLook& light,
                            LevelMeterPictureRequest request);

    // All that is drawn on.
    MeterArea whole() const {
        return {bar.low, light.isEmpty() ? bar.high : light.high, bar.near, bar.far};
    }

    // In points from the upper left corner of the frame.
    Rect fromUpperLeft(const MeterArea& area) const;
    // In points of a view that has the meter in `frame`.
    Rect inView(const MeterArea& area, const Rect& frame, bool isFlipped) const;
};

// Whole device pixels, at least 1 of what is more than nothing.
std::int32_t devicePixels(float points, float scale);

// In points from the upper left corner of a picture `length` pixels long.
Rect meterRect(const MeterArea& area, LevelMeterOrientation orientation, std::int32_t length,
               float scale);

}  // namespace veltra::detail
