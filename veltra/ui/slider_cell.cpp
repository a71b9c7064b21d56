// SPDX-License-Identifier: MIT
#include "veltra/ui/slider_cell.h"

#include "veltra/ui/canvas.h"
#include "veltra/ui/view.h"

#include <algorithm>
#include <cmath>

namespace veltra {

namespace {
constexpr float kKnob = 14.0F;
constexpr float kTrack = 4.0F;
constexpr float kTick = 4.0F;
}  // namespace

SliderCell::SliderCell() {
    ActionCell::setDoubleValue(0.0);
    sendActionOn(EventType::LeftMouseUp | EventType::LeftMouseDown | EventType::LeftMouseDragged);
}

void SliderCell::setMinValue(double value) {
    m_minValue = value;
    m_maxValue = std::max(m_maxValue, value);
    setDoubleValue(doubleValue());
}

void SliderCell::setMaxValue(double value) {
    m_maxValue = std::max(value, m_minValue);
    setDoubleValue(doubleValue());
}

void SliderCell::setDoubleValue(double value) {
    double inside = std::isnan(value) ? m_minValue : std::clamp(value, m_minValue, m_maxValue);
    if (m_allowsTickMarkValuesOnly) inside = closestTickMarkValueToValue(inside);
    ActionCell::setDoubleValue(inside);
}

void SliderCell::setStringValue(std::string_view value) {
    setDoubleValue(Cell(value).doubleValue());
}

void SliderCell::setNumberOfTickMarks(std::int32_t count) {
    m_numberOfTickMarks = std::max(count, 0);
    setDoubleValue(doubleValue());
    setNeedsDisplay();
}

void SliderCell::setAllowsTickMarkValuesOnly(bool only) {
    m_allowsTickMarkValuesOnly = only;
    setDoubleValue(doubleValue());
}

double SliderCell::tickMarkValueAtIndex(std::int32_t index) const {
    if (m_numberOfTickMarks < 2) return m_minValue;
    const double last = m_numberOfTickMarks - 1;
    const double part = std::clamp(static_cast<double>(index), 0.0, last) / last;
    return m_minValue + part * (m_maxValue - m_minValue);
}

double SliderCell::closestTickMarkValueToValue(double value) const {
    if (m_numberOfTickMarks == 0) return value;
    double closest = tickMarkValueAtIndex(0);
    for (std::int32_t i = 1; i < m_numberOfTickMarks; ++i) {
        const double mark = tickMarkValueAtIndex(i);
        const double difference = std::abs(mark - value) - std::abs(closest - value);
        if (difference < 0.0 || (difference == 0.0 && mark < closest)) closest = mark;
    }
    return closest;
}

bool SliderCell::isVertical() const {
    return m_isVertical.value_or(cellFrame().size.height > cellFrame().size.width);
}

float SliderCell::knobThickness() const {
    return kKnob;
}

Rect SliderCell::trackRect() const {
    return cellFrame();
}

Rect SliderCell::knobRectFlipped(bool isFlipped) const {
    const Rect track = trackRect();
    const double range = m_maxValue - m_minValue;
    float part = range > 0.0 ? static_cast<float>((doubleValue() - m_minValue) / range) : 0.0F;
    const float thickness = knobThickness();
    if (isVertical()) {
        if (isFlipped) part = 1.0F - part;
        const float y = track.minY() + part * (track.size.height - thickness);
        return {{track.center().x - thickness * 0.5F, y}, {thickness, thickness}};
    }
    const float x = track.minX() + part * (track.size.width - thickness);
    return {{x, track.center().y - thickness * 0.5F}, {thickness, thickness}};
}

void SliderCell::drawInteriorWithFrame(Canvas& canvas, const Rect& /*frame*/, View& view) {
    const Rect track = trackRect();
    const float half = knobThickness() * 0.5F;
    const bool vertical = isVertical();
    const Rect groove = vertical ? Rect{{track.center().x - kTrack * 0.5F, track.minY() + half},
                                        {kTrack, track.size.height - 2.0F * half}}
                                 : Rect{{track.minX() + half, track.center().y - kTrack * 0.5F},
                                        {track.size.width - 2.0F * half, kTrack}};
    canvas.fillPath(Path::roundedRect(groove, kTrack * 0.5F), view.systemColor(SystemColor::Grid));
    for (std::int32_t i = 0; i < m_numberOfTickMarks; ++i) {
        const double range = m_maxValue - m_minValue;
        float part =
            range > 0.0 ? static_cast<float>((tickMarkValueAtIndex(i) - m_minValue) / range) : 0.0F;
        if (vertical && view.isFlipped()) part = 1.0F - part;
        const Rect mark =
            vertical ? Rect{{groove.maxX() + kTick, groove.minY() + part * groove.size.height},
                            {kTick, 1.0F}}
                     : Rect{{groove.minX() + part * groove.size.width, groove.maxY() + kTick},
                            {1.0F, kTick}};
        canvas.fillRect(canvas.alignedToDevice(mark),
                        view.systemColor(SystemColor::SecondaryLabel));
    }
    const Path knob = Path::ellipse(knobRectFlipped(view.isFlipped()).inset(0.5F, 0.5F));
    canvas.fillPath(knob, view.systemColor(isEnabled() ? SystemColor::Accent : SystemColor::Grid));
    canvas.strokePath(knob, view.systemColor(SystemColor::ControlBackground), 1.0F);
}

bool SliderCell::startTracking(Point point, View& view) {
    const Rect knob = knobRectFlipped(view.isFlipped());
    const bool isOnKnob = mouseInRect(point, knob, view.isFlipped());
    m_grabbed = isOnKnob ? point - knob.center() : Point{};
    const WeakPointer<SliderCell> self(this);
    if (!isOnKnob) setValueAt(point, view);
    if (self && sendActionMask().contains(EventType::LeftMouseDown)) sendAction();
    return true;
}

bool SliderCell::continueTracking(Point /*last*/, Point current, View& view) {
    const WeakPointer<SliderCell> self(this);
    setValueAt(current, view);
    if (self && sendActionMask().contains(EventType::LeftMouseDragged)) sendAction();
    return true;
}

void SliderCell::setValueAt(Point point, View& view) {
    const Rect track = trackRect();
    const Point centre = point - m_grabbed;
    const float half = knobThickness() * 0.5F;
    const bool vertical = isVertical();
    const float length = (vertical ? track.size.height : track.size.width) - 2.0F * half;
    const float way = vertical ? centre.y - track.minY() - half : centre.x - track.minX() - half;
    if (!(length > 0.0F)) return;
    float part = std::clamp(way / length, 0.0F, 1.0F);
    if (vertical && view.isFlipped()) part = 1.0F - part;
    setDoubleValue(m_minValue + static_cast<double>(part) * (m_maxValue - m_minValue));
}

double SliderCell::step() const {
    if (m_altIncrementValue > 0.0) return m_altIncrementValue;
    const double parts = m_numberOfTickMarks > 1 ? m_numberOfTickMarks - 1 : 10;
    return (m_maxValue - m_minValue) / parts;
}

AccessibilityOrientation SliderCell::accessibilityOrientation() const {
    return isVertical() ? AccessibilityOrientation::Vertical : AccessibilityOrientation::Horizontal;
}

std::optional<AccessibilityNumber> SliderCell::accessibilityNumber() const {
    return AccessibilityNumber{doubleValue(), m_minValue, m_maxValue, step()};
}

bool SliderCell::setAccessibilityNumber(double value) {
    if (!isEnabled()) return false;
    setDoubleValue(value);
    sendAction();
    return true;
}

std::vector<AccessibilityAction> SliderCell::accessibilityActions() const {
    return {AccessibilityAction::Increment, AccessibilityAction::Decrement};
}

bool SliderCell::performAccessibilityAction(AccessibilityAction action) {
    if (action == AccessibilityAction::Press) return false;
    const double change = action == AccessibilityAction::Increment ? step() : -step();
    return setAccessibilityNumber(doubleValue() + change);
}

}  // namespace veltra
