// SPDX-License-Identifier: MIT
#include "veltra/controls/sliders/tick_curve.h"

#include <algorithm>
#include <cmath>

namespace veltra {

double tickCurvePart(TickCurve curve, std::int32_t index, std::int32_t count) noexcept {
    if (count < 2) return 0.0;
    const double last = count - 1;
    const double place = std::clamp(static_cast<double>(index), 0.0, last);
    if (curve == TickCurve::Even) return place / last;
    const bool isMirrored = curve == TickCurve::High;
    const double t = (isMirrored ? last - place : place) / last;
    const double part = 0.7 * t * t * t * t + 0.3 * t;
    return isMirrored ? 1.0 - part : part;
}

double tickCurveValue(TickCurve curve, std::int32_t index, std::int32_t count, double minimum,
                      double maximum) noexcept {
    if (count > 1 && index >= count - 1) return maximum;  // the sum may miss it by a little
    if (count < 2 || index <= 0) return minimum;
    return minimum + tickCurvePart(curve, index, count) * (maximum - minimum);
}

double linearValueOfTick(std::int32_t index, std::int32_t count, double minimum, double maximum,
                         bool isInverted) noexcept {
    if (count < 2) return minimum;
    const double way = (maximum - minimum) / (count - 1) * index;
    return isInverted ? maximum - way : minimum + way;
}

std::int32_t tickOfLinearValue(double value, std::int32_t count, double minimum,
                               double maximum) noexcept {
    if (count < 2 || !(maximum > minimum) || std::isnan(value)) return 0;
    const double step = (maximum - minimum) / (count - 1);
    const double index = std::round((std::clamp(value, minimum, maximum) - minimum) / step);
    return index > 0.0 ? static_cast<std::int32_t>(std::min(index, count - 1.0)) : 0;
}

}  // namespace veltra
