#include "veltra/controls/level_meters/detail/meter_layout.h"

#include <algorithm>
#include <cmath>

namespace veltra::detail {

namespace {

constexpr std::int32_t kLeastBar = 3;  // times the length of the clip light

}  // namespace

std::int32_t devicePixels(float points, float scale) {
    if (!(points > 0.0F)) return 0;
    constexpr float kMost = 32767.0F;  // what an image can have
    return std::max(static_cast<std::int32_t>(std::lround(std::min(points * scale, kMost))), 1);
}

Rect meterRect(const MeterArea& area, LevelMeterOrientation orientation, std::int32_t length,
               float scale) {
    const auto points = [scale](std::int32_t count) { return static_cast<float>(count) / scale; };
    const float along = points(area.high - area.low);
    const float across = points(area.far - area.near);
    if (orientation == LevelMeterOrientation::Horizontal)
        return {{points(area.low), points(area.near)}, {along, across}};
    return {{points(area.near), points(length - area.high)}, {across, along}};
}

MeterLayout MeterLayout::make(Size frame, float scale, LevelMeterOrientation orientation,
                              const LevelMeterMeasures& bar, const LevelMeterMeasures& light) {
    const bool isVertical = orientation == LevelMeterOrientation::Vertical;
    const std::int32_t length = devicePixels(isVertical ? frame.height : frame.width, scale);
    const std::int32_t thickness = devicePixels(isVertical ? frame.width : frame.height, scale);
    std::int32_t lightLength = devicePixels(light.lightLength, scale);
    std::int32_t gap = devicePixels(light.lightGap, scale);
    std::int32_t barLength = devicePixels(bar.length, scale);
    if (barLength == 0) {
        if (length < (1 + kLeastBar) * lightLength + gap) lightLength = gap = 0;
        barLength = length - lightLength - gap;
    }
    const auto acrossOf = [&](const LevelMeterMeasures& measures, float fixedLength) {
        if (!(fixedLength > 0.0F)) return MeterArea{0, 0, 0, thickness};
        const std::int32_t own = devicePixels(measures.thickness, scale);
        const std::int32_t near = (thickness - own) / 2;
        return MeterArea{0, 0, near, near + own};
    };
    MeterLayout layout{orientation, scale, length, acrossOf(bar, bar.length),
                       acrossOf(light, light.length)};
    layout.bar.high = barLength;
    layout.light.low = barLength + gap;
    layout.light.high = layout.light.low + lightLength;
    return layout;
}

Rect MeterLayout::fromUpperLeft(const MeterArea& area) const {
    return meterRect(area, orientation, length, scale);
}

Rect MeterLayout::inView(const MeterArea& area, const Rect& frame, bool isFlipped) const {
    const Rect place = fromUpperLeft(area);
    const float low = isFlipped ? frame.minY() + place.minY() : frame.maxY() - place.maxY();
    return {{frame.minX() + place.minX(), low}, place.size};
}

}  // namespace veltra::detail
