// SPDX-License-Identifier: MIT
#include "veltra/controls/sliders/slider_tracking.h"

#include <algorithm>
#include <cmath>

namespace veltra {

namespace {

bool captures(double mark, double value, double delta) noexcept {
    return mark - delta < value && value < mark + delta;
}

}  // namespace

float SliderTravel::span() const noexcept {
    return (isVertical ? track.size.height : track.size.width) - knob;
}

double SliderTravel::valueAt(float position, float grabOffset, double present) const noexcept {
    if (!(span() > 0.0F)) return present;
    float distance = (position - grabOffset) - origin() - knob * 0.5F;
    distance = isReversed() ? std::ceil(distance) : std::floor(distance);
    double part = std::clamp(static_cast<double>(distance) / static_cast<double>(span()), 0.0, 1.0);
    if (isReversed()) part = 1.0 - part;
    return minimum + part * (maximum - minimum);
}

float SliderTravel::knobOriginOf(double value) const noexcept {
    const double range = maximum - minimum;
    double part = range > 0.0 ? (value - minimum) / range : 0.0;
    part = part >= 0.0 ? std::min(part, 1.0) : 0.0;
    if (isReversed()) part = 1.0 - part;
    return origin() + static_cast<float>(part) * std::max(span(), 0.0F);
}

float SliderTravel::grabOffsetAt(float position, double value) const noexcept {
    const float offset = position - middleOf(value);
    return isReversed() ? std::ceil(offset) : std::floor(offset);
}

int SliderTravel::directionOf(Point from, Point to) const noexcept {
    const float moved = along(to) - along(from);
    const int sign = (moved > 0.0F ? 1 : 0) - (moved < 0.0F ? 1 : 0);
    return isReversed() ? -sign : sign;
}

double magneticValue(double value, std::span<const double> marks, double delta) noexcept {
    const auto found = std::find_if(marks.begin(), marks.end(),
                                    [=](double mark) { return captures(mark, value, delta); });
    return found != marks.end() ? *found : value;
}

double magneticStep(double from, double to, std::span<const double> marks, double delta) noexcept {
    for (const double mark : marks) {
        if (captures(mark, to, delta)) return captures(mark, from, delta) ? to : mark;
    }
    return to;
}

int WheelNotches::add(double part) noexcept {
    constexpr double kMost = 1000.0;
    if (std::isnan(part)) return 0;
    if (part * m_rest < 0.0) m_rest = 0.0;
    m_rest = std::clamp(m_rest + part, -kMost, kMost);
    const double whole = std::trunc(m_rest);
    m_rest -= whole;
    return static_cast<int>(whole);
}

}  // namespace veltra
