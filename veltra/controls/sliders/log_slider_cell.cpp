// SPDX-License-Identifier: MIT
#include "veltra/controls/sliders/log_slider_cell.h"

#include "veltra/controls/sliders/tick_curve.h"
#include "veltra/ui/keyed_coder.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace veltra {

namespace {

constexpr char kLogTickMarks[] = "SLIDER_LOG_TICK_MARKS";
constexpr char kInvertValues[] = "SLIDER_INVERT_VALUES";
constexpr std::int32_t kDenseAtMaximum = 2;

std::int32_t asInteger(double value) {
    using Limits = std::numeric_limits<std::int32_t>;
    if (std::isnan(value)) return 0;
    return static_cast<std::int32_t>(
        std::clamp<double>(std::trunc(value), Limits::min(), Limits::max()));
}

}  // namespace

void QkLogSliderCell::setLogTickMarks(std::int32_t mode) {
    m_logTickMarks = mode;
    setNumberOfTickMarks(numberOfTickMarks());  // moves the value to a mark of the new curve
}

void QkLogSliderCell::setInvertValues(bool invert) {
    if (invert == m_invertValues) return;
    m_invertValues = invert;
    setNeedsDisplay();
    postAccessibilityNotification(AccessibilityNotification::ValueChanged);
}

double QkLogSliderCell::tickMarkValueAtIndex(std::int32_t index) const {
    if (m_logTickMarks == 0) return SliderCell::tickMarkValueAtIndex(index);
    return tickCurveValue(m_logTickMarks == kDenseAtMaximum ? TickCurve::High : TickCurve::Low,
                          index, numberOfTickMarks(), minValue(), maxValue());
}

std::int32_t QkLogSliderCell::closestIndexOfValue(double value) const {
    const double closest = closestTickMarkValueToValue(value);
    for (std::int32_t i = 0; i < numberOfTickMarks(); ++i) {
        if (tickMarkValueAtIndex(i) == closest) return i;
    }
    return 0;
}

double QkLogSliderCell::logSliderValue() const {
    if (!allowsTickMarkValuesOnly()) return sliderValue();
    if (!stopsOnly()) return doubleValue();
    return linearValueOfTick(closestIndexOfValue(doubleValue()), numberOfTickMarks(), minValue(),
                             maxValue(), m_invertValues);
}

void QkLogSliderCell::setLogSliderValue(double value) {
    if (!allowsTickMarkValuesOnly()) return setSliderValue(value);
    if (!stopsOnly()) return setDoubleValue(value);
    double wanted = std::isnan(value) ? minValue() : std::clamp(value, minValue(), maxValue());
    if (m_invertValues) wanted = mirroredValue(wanted, minValue(), maxValue());
    setDoubleValue(tickMarkValueAtIndex(
        tickOfLinearValue(wanted, numberOfTickMarks(), minValue(), maxValue())));
}

std::int32_t QkLogSliderCell::logSliderIntValue() const {
    return asInteger(std::round(logSliderValue()));
}

double QkLogSliderCell::sliderValue() const {
    return m_invertValues ? mirroredValue(doubleValue(), minValue(), maxValue()) : doubleValue();
}

void QkLogSliderCell::setSliderValue(double value) {
    setDoubleValue(m_invertValues ? mirroredValue(value, minValue(), maxValue()) : value);
}

std::int32_t QkLogSliderCell::sliderIntValue() const {
    return asInteger(sliderValue());
}

void QkLogSliderCell::setSliderIntValue(std::int32_t value) {
    if (sliderIntValue() != value) setSliderValue(value);
}

void QkLogSliderCell::encodeWithCoder(KeyedCoder& coder) const {
    SliderCell::encodeWithCoder(coder);
    coder.encodeInt64(m_logTickMarks, kLogTickMarks);
    coder.encodeBool(m_invertValues, kInvertValues);
}

// The curve before the value, which would be moved to another mark otherwise.
void QkLogSliderCell::decodeWithCoder(const KeyedCoder& coder) {
    m_logTickMarks = static_cast<std::int32_t>(coder.decodeInt64(kLogTickMarks, m_logTickMarks));
    m_invertValues = coder.decodeBool(kInvertValues, m_invertValues);
    SliderCell::decodeWithCoder(coder);
}

std::optional<AccessibilityNumber> QkLogSliderCell::accessibilityNumber() const {
    const double oneStop = stopsOnly() ? (maxValue() - minValue()) / (numberOfTickMarks() - 1) : 0;
    return AccessibilityNumber{logSliderValue(), minValue(), maxValue(), std::max(step(), oneStop)};
}

bool QkLogSliderCell::setAccessibilityNumber(double value) {
    if (!isEnabled()) return false;
    const WeakPointer<QkLogSliderCell> self(this);
    setLogSliderValue(value);
    if (self) sendAction();
    return true;
}

bool QkLogSliderCell::performAccessibilityAction(AccessibilityAction action) {
    if (action == AccessibilityAction::Press || !isEnabled()) return false;
    const bool isUp = (action == AccessibilityAction::Increment) != m_invertValues;
    return SliderCell::setAccessibilityNumber(valueAfter(isUp ? step() : -step()));
}

}  // namespace veltra
