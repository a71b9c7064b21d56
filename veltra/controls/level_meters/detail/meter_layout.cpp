// SPDX-License-Identifier: MIT
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

MeterLayout MeterLayout::make(Size frame, const LevelMeterLook& bar, const LevelMeterLook& light,
                              LevelMeterPictureRequest request) {
    const bool isVertical = request.orientation == LevelMeterOrientation::Vertical;
    const auto toPixels = [&](float points) { return devicePixels(points, request.scale); };
    const LevelMeterMeasures barMeasures = bar.measures(request.orientation);
    const LevelMeterMeasures lightMeasures = light.measures(request.orientation);
    MeterLayout layout{request.orientation, request.scale,
                       toPixels(isVertical ? frame.height : frame.width)};
    const std::int32_t thickness = toPixels(isVertical ? frame.width : frame.height);

    std::int32_t lightLength = toPixels(lightMeasures.lightLength);
    std::int32_t gap = lightLength > 0 ? toPixels(lightMeasures.lightGap) : 0;
    request.length = toPixels(barMeasures.length);
    request.thickness = thickness;
    std::int32_t start = 0;
    if (request.length == 0) {
        if (layout.length < (1 + kLeastBar) * lightLength + gap) lightLength = gap = 0;
        const std::int32_t room = layout.length - lightLength - gap;
        request.length = room;
        request.length = std::clamp(bar.fittingLength(request), 0, room);
        start = room - request.length;
    }
    const auto area = [&](std::int32_t low, std::int32_t high, const LevelMeterMeasures& own) {
        const std::int32_t across = own.length > 0.0F ? toPixels(own.thickness) : thickness;
        const std::int32_t near = (thickness - across) / 2;
        return MeterArea{low, high, near, near + across};
    };
    layout.bar = area(start, start + request.length, barMeasures);
    layout.light = area(layout.bar.high + gap, layout.bar.high + gap + lightLength, lightMeasures);
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
