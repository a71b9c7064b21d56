// SPDX-License-Identifier: MIT
#include "veltra/ui/slider_cell.h"

#include "veltra/ui/canvas.h"
#include "veltra/ui/keyed_coder.h"
#include "veltra/ui/view.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace veltra {

namespace {
constexpr float kKnob = 14.0F;
constexpr float kTrack = 4.0F;
constexpr float kTick = 4.0F;
constexpr double kPartOfANotch = 0.01;  // of the range
constexpr double kStepsOfAPage = 10.0;
constexpr double kFarthestLimit = std::numeric_limits<double>::max() / 2.0;

constexpr char kMinimum[] = "SLIDER_MINIMUM";
constexpr char kMaximum[] = "SLIDER_MAXIMUM";
constexpr char kTickMarks[] = "SLIDER_TICK_MARKS";
constexpr char kTickMarksOnly[] = "SLIDER_TICK_MARKS_ONLY";
constexpr char kStep[] = "SLIDER_STEP";
constexpr char kVertical[] = "SLIDER_VERTICAL";

// What the middle of the knob can reach.
Rect grooveOf(const Rect& track, float knob, bool isVertical) {
    const float half = knob * 0.5F;
    return isVertical ? Rect{{track.center().x - kTrack * 0.5F, track.minY() + half},
                             {kTrack, track.size.height - knob}}
                      : Rect{{track.minX() + half, track.center().y - kTrack * 0.5F},
                             {track.size.width - knob, kTrack}};
}

}  // namespace

SliderCell::SliderCell() {
    ActionCell::setDoubleValue(0.0);
    sendActionOn(EventType::LeftMouseUp | EventType::LeftMouseDown | EventType::LeftMouseDragged);
}

void SliderCell::setMinValue(double value) {
    if (std::isnan(value)) return;
    m_minValue = std::clamp(value, -kFarthestLimit, kFarthestLimit);
    m_maxValue = std::max(m_maxValue, m_minValue);
    keepInLimits();
}

void SliderCell::setMaxValue(double value) {
    if (std::isnan(value)) return;
    m_maxValue = std::max(std::min(value, kFarthestLimit), m_minValue);
    keepInLimits();
}

double SliderCell::limited(double value) const {
    const double inside =
        std::isnan(value) ? m_minValue : std::clamp(value, m_minValue, m_maxValue);
    return m_allowsTickMarkValuesOnly ? closestTickMarkValueToValue(inside) : inside;
}

// Not through setDoubleValue(): what a subclass does to a new value is not meant for an old one.
void SliderCell::keepInLimits() {
    ActionCell::setDoubleValue(limited(doubleValue()));
    setNeedsDisplay();
}

void SliderCell::setDoubleValue(double value) {
    ActionCell::setDoubleValue(limited(value));
}

void SliderCell::setStringValue(std::string_view value) {
    setDoubleValue(Cell(value).doubleValue());
}

void SliderCell::setNumberOfTickMarks(std::int32_t count) {
    m_numberOfTickMarks = std::clamp(count, 0, kMaximumTickMarks);
    keepInLimits();
}

void SliderCell::setAllowsTickMarkValuesOnly(bool only) {
    m_allowsTickMarkValuesOnly = only;
    keepInLimits();
}

double SliderCell::tickMarkValueAtIndex(std::int32_t index) const {
    if (m_numberOfTickMarks < 2) return m_minValue;
    const double last = m_numberOfTickMarks - 1;
    const double part = std::clamp(static_cast<double>(index), 0.0, last) / last;
    if (part == 1.0) return m_maxValue;  // which the sum may miss
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

Rect SliderCell::rectOfTickMarkAtIndex(std::int32_t index, bool isFlipped) const {
    if (index < 0 || index >= m_numberOfTickMarks) return {};
    const double range = m_maxValue - m_minValue;
    const double value = tickMarkValueAtIndex(index) - m_minValue;
    float part = range > 0.0 ? static_cast<float>(value / range) : 0.0F;
    if (isVertical() && isFlipped) part = 1.0F - part;
    const Rect groove = grooveOf(trackRect(), knobThickness(), isVertical());
    return isVertical() ? Rect{{groove.maxX() + kTick, groove.minY() + part * groove.size.height},
                               {kTick, 1.0F}}
                        : Rect{{groove.minX() + part * groove.size.width, groove.maxY() + kTick},
                               {1.0F, kTick}};
}

void SliderCell::drawBar(Canvas& canvas, const Rect& track, View& view) {
    const Rect groove = grooveOf(track, knobThickness(), isVertical());
    canvas.fillPath(Path::roundedRect(groove, kTrack * 0.5F), view.systemColor(SystemColor::Grid));
}

void SliderCell::drawTickMarks(Canvas& canvas, View& view) {
    for (std::int32_t i = 0; i < m_numberOfTickMarks; ++i) {
        canvas.fillRect(canvas.alignedToDevice(rectOfTickMarkAtIndex(i, view.isFlipped())),
                        view.systemColor(SystemColor::SecondaryLabel));
    }
}

void SliderCell::drawKnob(Canvas& canvas, const Rect& knob, View& view) {
    const Path path = Path::ellipse(knob.inset(0.5F, 0.5F));
    const bool isLive = isEnabled();
    canvas.fillPath(path, view.systemColor(isLive ? SystemColor::Accent : SystemColor::Grid));
    canvas.strokePath(path, view.systemColor(SystemColor::ControlBackground), 1.0F);
}

void SliderCell::drawInteriorWithFrame(Canvas& canvas, const Rect& /*frame*/, View& view) {
    drawBar(canvas, trackRect(), view);
    drawTickMarks(canvas, view);
    drawKnob(canvas, knobRectFlipped(view.isFlipped()), view);
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

void SliderCell::stopTracking(Point /*last*/, Point /*stop*/, View& /*view*/, bool mouseIsUp) {
    if (!mouseIsUp && sendActionMask().contains(EventType::LeftMouseUp)) sendAction();
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

double SliderCell::valueAfter(double way) const {
    if (way == 0.0 || std::isnan(way)) return doubleValue();
    if (!m_allowsTickMarkValuesOnly || m_numberOfTickMarks < 2) return doubleValue() + way;
    const double last = m_numberOfTickMarks - 1;
    const double range = m_maxValue - m_minValue;
    const double marks = range > 0.0 ? std::round(std::abs(way) / range * last) : 0.0;
    std::int32_t index = 0;
    while (index < m_numberOfTickMarks - 1 && tickMarkValueAtIndex(index) < doubleValue())
        ++index;
    const double wanted = index + std::copysign(std::max(marks, 1.0), way);
    return tickMarkValueAtIndex(static_cast<std::int32_t>(std::clamp(wanted, 0.0, last)));
}

void SliderCell::changeAndSend(double value) {
    const double before = doubleValue();
    const WeakPointer<SliderCell> self(this);
    setDoubleValue(value);
    if (self && doubleValue() != before) sendAction();
}

void SliderCell::scrollWheel(const Event& event) {
    if (!isEnabled()) return;
    const double notches = event.deltaY != 0.0F ? event.deltaY : -event.deltaX;
    if (!std::isfinite(notches)) return;
    const double range = m_maxValue - m_minValue;
    if (!m_allowsTickMarkValuesOnly || m_numberOfTickMarks < 2) {
        return changeAndSend(doubleValue() + notches * range * kPartOfANotch);
    }
    m_wheeled += notches;  // fine wheels turn less than a notch at a time
    const double marks = std::trunc(m_wheeled);
    m_wheeled -= marks;
    if (marks != 0.0) changeAndSend(valueAfter(marks * range / (m_numberOfTickMarks - 1)));
}

std::optional<double> SliderCell::stepsOfKey(char16_t key) {
    constexpr double kAll = std::numeric_limits<double>::infinity();
    switch (key) {
        case kHomeCharacter:
            return -kAll;
        case kEndCharacter:
            return kAll;
        case kPageUpCharacter:
            return kStepsOfAPage;
        case kPageDownCharacter:
            return -kStepsOfAPage;
        case kUpArrowCharacter:
        case kRightArrowCharacter:
            return 1.0;
        case kDownArrowCharacter:
        case kLeftArrowCharacter:
            return -1.0;
        default:
            return std::nullopt;
    }
}

bool SliderCell::performKey(const Event& event) {
    if (!wantsKey(event)) return false;
    const auto steps = stepsOfKey(event.plainKey());
    if (steps) changeAndSend(valueAfter(*steps * step()));
    return steps.has_value();
}

bool SliderCell::wantsKey(const Event& event) const {
    return isEnabled() && stepsOfKey(event.plainKey());
}

void SliderCell::encodeWithCoder(KeyedCoder& coder) const {
    ActionCell::encodeWithCoder(coder);
    coder.encodeDouble(m_minValue, kMinimum);
    coder.encodeDouble(m_maxValue, kMaximum);
    coder.encodeInt64(m_numberOfTickMarks, kTickMarks);
    coder.encodeBool(m_allowsTickMarkValuesOnly, kTickMarksOnly);
    coder.encodeDouble(m_altIncrementValue, kStep);
    if (m_isVertical) coder.encodeBool(*m_isVertical, kVertical);
}

// The limits before the value, which they would cut otherwise.
void SliderCell::decodeWithCoder(const KeyedCoder& coder) {
    const double minimum = coder.decodeDouble(kMinimum, m_minValue);
    const double maximum = coder.decodeDouble(kMaximum, m_maxValue);
    setMinValue(minimum);
    setMaxValue(maximum);
    const std::int64_t count = coder.decodeInt64(kTickMarks, m_numberOfTickMarks);
    setNumberOfTickMarks(static_cast<std::int32_t>(std::clamp<std::int64_t>(count, 0, INT32_MAX)));
    setAllowsTickMarkValuesOnly(coder.decodeBool(kTickMarksOnly, m_allowsTickMarkValuesOnly));
    setAltIncrementValue(coder.decodeDouble(kStep, m_altIncrementValue));
    if (coder.contains(kVertical)) setVertical(coder.decodeBool(kVertical));
    ActionCell::decodeWithCoder(coder);
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
    if (!isEnabled()) return {};
    return {AccessibilityAction::Increment, AccessibilityAction::Decrement};
}

bool SliderCell::performAccessibilityAction(AccessibilityAction action) {
    if (action == AccessibilityAction::Press) return false;
    return setAccessibilityNumber(
        valueAfter(action == AccessibilityAction::Increment ? step() : -step()));
}

}  // namespace veltra
