// SPDX-License-Identifier: MIT
#include "veltra/controls/sliders/slider_cell.h"

#include "veltra/base/number_text.h"
#include "veltra/base/string_object_text.h"
#include "veltra/controls/sliders/detail/slider_drawing.h"
#include "veltra/platform/notification_center.h"
#include "veltra/ui/application.h"
#include "veltra/ui/image_registry.h"
#include "veltra/ui/window.h"

#include <algorithm>
#include <cmath>

namespace veltra {

namespace {

constinit const VLString startTrackingName = constantString(u"StartTracking");
constinit const VLString stopTrackingName = constantString(u"StopTracking");

constexpr double kRunSeconds = 1.0;
constexpr double kPartOfANotch = 0.01;  // of the range
constexpr float kRedrawnAround = 4.0F;  // the halo of a cap, and a pixel
constexpr EventMask kAllPhases =
    EventMask(EventType::LeftMouseDown) | EventType::LeftMouseDragged | EventType::LeftMouseUp;

}  // namespace

const VLString* const kSliderStartTracking = &startTrackingName;
const VLString* const kSliderStopTracking = &stopTrackingName;

QkSliderCell::QkSliderCell()
    : m_sendActionMask(kAllPhases),
      m_scrollWheelToolTipTimer(kRunSeconds, this,
                                veltra::action<&QkSliderCell::scrollWheelToolTipTimerCallback>(),
                                nullptr, false) {}

// A gesture that was begun is ended, also when the cell goes in the middle of it.
QkSliderCell::~QkSliderCell() {
    cutAnchor();
    closeToolTip();
    if (m_gesture == Gesture::Drag || m_gesture == Gesture::Run) post(kSliderStopTracking);
}

// Settings.

void QkSliderCell::relayOut() {
    if (View* const view = controlView(); view != nullptr && m_cellFrameSet)
        calculateInternalsFromCellFrame(cellFrame(), *view);
    setNeedsDisplay();
}

void QkSliderCell::setLength(float& member, float value) {
    member = value > 0.0F ? value : 0.0F;
    relayOut();
}

void QkSliderCell::setImageIDs(std::int32_t knobImageID, std::int32_t trackImageID) {
    m_knobImageID = knobImageID;
    m_trackImageID = trackImageID;
    relayOut();
}

void QkSliderCell::setMinSideInset(float inset) {
    setLength(m_minSideInset, inset);
}

void QkSliderCell::setMaxSideInset(float inset) {
    setLength(m_maxSideInset, inset);
}

void QkSliderCell::setMinSideSliderInset(float inset) {
    setLength(m_minSideSliderInset, inset);
}

void QkSliderCell::setMaxSideSliderInset(float inset) {
    setLength(m_maxSideSliderInset, inset);
}

void QkSliderCell::setTrackYInset(float inset) {
    setLength(m_trackYInset, inset);
}

void QkSliderCell::setLabelsYInset(float inset) {
    setLength(m_labelsYInset, inset);
}

void QkSliderCell::setKnobRectInset(Point inset) {
    setLength(m_knobRectInset.x, inset.x);
    setLength(m_knobRectInset.y, inset.y);
}

void QkSliderCell::setThumbClickAreaLeftInset(float inset) {
    setLength(m_thumbClickAreaLeftInset, inset);
}

void QkSliderCell::setThumbClickAreaRightInset(float inset) {
    setLength(m_thumbClickAreaRightInset, inset);
}

void QkSliderCell::setTickMarkYPosition(float position, float height) {
    setLength(m_tickMarkY, position);
    setLength(m_tickMarkHeight, height);
}

void QkSliderCell::setTickMarkColor(std::optional<Color> color) {
    m_tickMarkColor = color;
    setNeedsDisplay();
}

void QkSliderCell::setTickMarkDisabledColor(std::optional<Color> color) {
    m_tickMarkDisabledColor = color;
    setNeedsDisplay();
}

void QkSliderCell::setMarks(std::vector<SliderMark> marks, std::string unit) {
    m_marks = std::move(marks);
    m_unit = std::move(unit);
    setNeedsDisplay();
}

void QkSliderCell::setEndLabels(std::string minimum, std::string maximum) {
    m_minimumLabel = std::move(minimum);
    m_maximumLabel = std::move(maximum);
    setNeedsDisplay();
}

void QkSliderCell::setKnobDisabledAlpha(float alpha) {
    m_KnobDisabledAlpha = alpha > 0.0F ? std::min(alpha, 1.0F) : 0.0F;
    setNeedsDisplay();
}

void QkSliderCell::setShowsDisabledWhenNotMainWindow(bool shows) {
    m_showsDisabledWhenNotMainWindow = shows;
    setNeedsDisplay();
}

void QkSliderCell::setFineValueControlStep(double step) {
    m_fineValueControlStep = std::isfinite(step) ? step : 0.0;
}

void QkSliderCell::setDefaultValue(double value) {
    if (std::isnan(value)) return;
    m_defaultValue = value;
    setNeedsDisplay();
}

void QkSliderCell::setAltClickSetsDefaultValue(bool sets) {
    m_altClickSetsDefaultValue = sets;
}

void QkSliderCell::setLabelClickSetsMinMaxValue(bool sets) {
    m_labelClickSetsMinMaxValue = sets;
}

void QkSliderCell::setMovableToolTip(Anchored* object, std::int32_t tag) {
    closeToolTip();
    m_toolTipObject = object;
    m_toolTipTag = tag;
}

void QkSliderCell::setFormatter(std::function<std::string(double value)> formatter) {
    m_formatter = std::move(formatter);
}

void QkSliderCell::setMagneticMarkAt(double value) {
    const bool isInside = minValue() <= value && value <= maxValue();
    const auto& marks = m_magneticMarks;
    if (!isInside || std::find(marks.begin(), marks.end(), value) != marks.end()) return;
    m_magneticMarks.push_back(value);
}

void QkSliderCell::setDoubleValue(double value) {
    setPlainValue(magneticValue(value, m_magneticMarks, m_magneticMarkDelta));
}

void QkSliderCell::setEnabled(bool isEnabled) {
    const WeakPointer<QkSliderCell> self(this);
    if (!isEnabled) endRun();
    if (self) QkLogSliderCell::setEnabled(isEnabled);
}

// Geometry.

bool QkSliderCell::isFlipped() const {
    return controlView() != nullptr && controlView()->isFlipped();
}

void QkSliderCell::calculateInternalsFromCellFrame(const Rect& frame, View& controlView) {
    QkLogSliderCell::calculateInternalsFromCellFrame(frame, controlView);
    const bool vertical = isVertical();
    const bool flipped = controlView.isFlipped();
    const auto cut = [&](Rect rect, float minSide, float maxSide) {
        float& origin = vertical ? rect.origin.y : rect.origin.x;
        float& length = vertical ? rect.size.height : rect.size.width;
        origin += vertical && flipped ? maxSide : minSide;
        length = std::max(length - minSide - maxSide, 0.0F);
        return rect;
    };
    m_sliderFrame = cut(frame, m_minSideInset, m_maxSideInset);
    m_interiorFrame = cut(m_sliderFrame, m_minSideSliderInset, m_maxSideSliderInset);
    m_trackRect = m_interiorFrame;
    float& across = vertical ? m_trackRect.size.width : m_trackRect.size.height;
    const float inset = std::min(m_trackYInset, across);
    if (vertical) m_trackRect.origin.x += inset;
    if (!vertical && flipped) m_trackRect.origin.y += inset;
    across -= inset;
    const Window* const window = controlView.window();
    const auto image = findImage(m_knobImageID, window != nullptr ? window->scale() : 1.0F);
    m_knobSize =
        image ? image->size() : detail::capSize(detail::capKindOf(m_knobImageID), vertical);
    m_cellFrameSet = true;
}

SliderTravel QkSliderCell::travel(bool isFlipped) const {
    return {m_trackRect, knobThickness(), isVertical(), isFlipped, minValue(), maxValue()};
}

Rect QkSliderCell::trackRect() const {
    return m_trackRect;
}

float QkSliderCell::knobThickness() const {
    return isVertical() ? m_knobSize.height : m_knobSize.width;
}

float QkSliderCell::knobRadius() const {
    return detail::capRadius(detail::capKindOf(m_knobImageID));
}

Rect QkSliderCell::knobRectFlipped(bool isFlipped) const {
    const float along = travel(isFlipped).knobOriginOf(doubleValue());
    const Point middle = m_trackRect.center();
    return isVertical() ? Rect{{middle.x - m_knobSize.width * 0.5F, along}, m_knobSize}
                        : Rect{{along, middle.y - m_knobSize.height * 0.5F}, m_knobSize};
}

Rect QkSliderCell::rectOfTickMarkAtIndex(std::int32_t index, bool isFlipped) const {
    if (index < 0 || index >= numberOfTickMarks()) return {};
    const float at = travel(isFlipped).middleOf(tickMarkValueAtIndex(index)) - 0.5F;
    const Point middle = m_trackRect.center();
    if (isVertical())
        return {{middle.x - m_tickMarkY - m_tickMarkHeight, at}, {m_tickMarkHeight, 1.0F}};
    return {{at, isFlipped ? middle.y + m_tickMarkY : middle.y - m_tickMarkY - m_tickMarkHeight},
            {1.0F, m_tickMarkHeight}};
}

bool QkSliderCell::isInGrabArea(Point point) const {
    Rect area = knobRectFlipped(isFlipped());
    area.origin.x += m_thumbClickAreaLeftInset;
    area.size.width -= m_thumbClickAreaLeftInset + m_thumbClickAreaRightInset;
    return mouseInRect(point, area, isFlipped());
}

void QkSliderCell::redrawKnob() {
    if (View* const view = controlView())
        view->setNeedsDisplayInRect(
            knobRectFlipped(isFlipped()).inset(-kRedrawnAround, -kRedrawnAround));
}

double QkSliderCell::valueWithPoint(Point point) const {
    const SliderTravel way = travel(isFlipped());
    return way.valueAt(way.along(point), m_mouseOffset, doubleValue());
}

void QkSliderCell::setValueWithPoint(Point point) {
    setDoubleValue(valueWithPoint(point));
}

// Tracking.

bool QkSliderCell::trackMouse(const Event& event, const Rect& frame, View& view,
                              bool untilMouseUp) {
    if (!m_cellFrameSet || !(frame == cellFrame()) || controlView() != &view)
        calculateInternalsFromCellFrame(frame, view);
    return QkLogSliderCell::trackMouse(event, frame, view, untilMouseUp);
}

const Event* QkSliderCell::currentEvent() const {
    const Window* const window = controlView() != nullptr ? controlView()->window() : nullptr;
    return window != nullptr ? window->currentEvent() : Application::current().currentEvent();
}

void QkSliderCell::post(const VLString* name) const {
    NotificationCenter::local().post(name, this);
}

bool QkSliderCell::acceptsPress(Point point) const {
    if (!isEnabled()) return false;
    if (mouseInRect(point, m_trackRect, isFlipped())) return true;
    return mouseInRect(point, cellFrame(), isFlipped()) && m_labelClickSetsMinMaxValue &&
           (m_minSideInset > 0.0F || m_maxSideInset > 0.0F);
}

// Before the track and behind it are the labels of the ends.
void QkSliderCell::jumpTo(Point point) {
    const SliderTravel way = travel(isFlipped());
    const float beyond = way.along(point) - way.origin();
    const float length = way.span() + way.knob;
    if (mouseInRect(point, m_trackRect, isFlipped()) || (beyond >= 0.0F && beyond <= length))
        return setValueWithPoint(point);
    setDoubleValue((beyond < 0.0F) != way.isReversed() ? minValue() : maxValue());
}

bool QkSliderCell::startTracking(Point point, View& view) {
    m_altClicked = false;
    if (!m_cellFrameSet) calculateInternalsFromCellFrame(view.bounds(), view);
    if (!acceptsPress(point)) return false;
    const WeakPointer<QkSliderCell> self(this);
    const auto goesOn = [&](Gesture expected) { return self && m_gesture == expected; };
    const bool endsRun = m_gesture == Gesture::Run;
    m_gesture = Gesture::Starting;
    if (endsRun) {
        m_scrollWheelToolTipTimer.stop();  // its tip stays
        post(kSliderStopTracking);
        if (!goesOn(Gesture::Starting)) return false;
    }
    const bool isGrabbed = isInGrabArea(point);
    QkLogSliderCell::sendActionOn({});  // from here on the cell sends by itself
    m_pointer = point;
    m_hasMoved = false;
    m_isFine = false;
    m_finePending = 0.0;
    m_valueAtPress = doubleValue();
    const Event* const event = currentEvent();
    const bool isAlt = event != nullptr && event->modifierFlags.contains(kAlternateKeyMask);
    if (isAlt && m_altClickSetsDefaultValue) {
        setDoubleValue(m_defaultValue);
        if (!goesOn(Gesture::Starting)) return false;
        sendActionWithCurrentEvent(false);
        if (!goesOn(Gesture::Starting)) return false;
        m_altClicked = true;
    } else {
        m_state = 1;
        m_mouseOffset = 0.0F;
        if (isGrabbed) {
            const SliderTravel way = travel(isFlipped());
            m_mouseOffset = way.grabOffsetAt(way.along(point), doubleValue());
            redrawKnob();
        } else {
            jumpTo(point);
            if (!goesOn(Gesture::Starting)) return false;
        }
    }
    m_gesture = Gesture::Drag;
    post(kSliderStartTracking);
    if (!goesOn(Gesture::Drag)) return false;
    if (!m_altClicked) {
        sendActionWithCurrentEvent(true);
        if (!goesOn(Gesture::Drag)) return false;
    }
    showToolTip(view);
    return goesOn(Gesture::Drag);
}

// Renews the offset, so that the knob stays under the pointer when Shift is let go.
void QkSliderCell::fineStep(int direction, Point at) {
    const WeakPointer<QkSliderCell> self(this);
    const double before = doubleValue();
    const double wanted = before + direction * m_fineValueControlStep + m_finePending;
    setDoubleValue(wanted);
    if (!self) return;
    const bool isSwallowed =
        doubleValue() == before && wanted >= minValue() && wanted <= maxValue();
    m_finePending = isSwallowed ? wanted - before : 0.0;
    const SliderTravel way = travel(isFlipped());
    m_mouseOffset = way.grabOffsetAt(way.along(at), doubleValue());
    m_isFine = true;
}

bool QkSliderCell::continueTracking(Point last, Point current, View& view) {
    const WeakPointer<QkSliderCell> self(this);
    if (!m_altClicked) {
        const Event* const event = currentEvent();
        const bool isShift = event != nullptr && event->modifierFlags.contains(kShiftKeyMask);
        const int direction = travel(isFlipped()).directionOf(last, current);
        const bool isFine = m_fineValueControlStep != 0.0 && isShift;
        m_pointer = current;
        m_hasMoved = true;
        // Where a fine step has led, the next plain one begins with the next movement.
        if (direction != 0 || (!isFine && !m_isFine)) {
            if (isFine) {
                fineStep(direction, current);
            } else {
                m_isFine = false;
                m_finePending = 0.0;
                setValueWithPoint(current);
            }
            if (!self) return false;
            sendActionWithCurrentEvent(true);
            if (!self) return false;
        }
    }
    if (m_gesture == Gesture::Drag) showToolTip(view);
    return true;
}

void QkSliderCell::stopTracking(Point /*last*/, Point /*stop*/, View& /*view*/,
                                bool /*mouseIsUp*/) {
    const WeakPointer<QkSliderCell> self(this);
    m_state = 0;
    const bool isPosted = m_gesture == Gesture::Drag;
    const bool isBegun = m_gesture != Gesture::Starting;
    if (m_gesture != Gesture::Run) m_gesture = Gesture::None;
    if (isBegun && !m_altClicked) {
        sendActionWithCurrentEvent(true);
        if (!self) return;
    }
    m_altClicked = false;
    setNeedsDisplay();
    if (isPosted) {
        post(kSliderStopTracking);
        if (!self) return;
    }
    if (m_gesture == Gesture::None) closeToolTip();
}

void QkSliderCell::abandonDrag() {
    const WeakPointer<QkSliderCell> self(this);
    const bool isChanged = doubleValue() != m_valueAtPress;
    setPlainValue(m_valueAtPress);
    if (self && isChanged) sendActionWithCurrentEvent(false);
    if (!self) return;
    if (auto* const control = dynamic_cast<Control*>(controlView())) control->cancelTracking();
}

// Actions.

EventMask QkSliderCell::sendActionOn(EventMask mask) noexcept {
    return std::exchange(m_sendActionMask, mask);
}

void QkSliderCell::sendActionWithCurrentEvent(bool check) {
    if (check) {
        const Event* const event = currentEvent();
        if (event == nullptr || !kAllPhases.contains(event->type) ||
            !m_sendActionMask.contains(event->type))
            return;
    }
    sendAction();
}

// The wheel, keys and screen readers.

double QkSliderCell::wheelStep() const {
    const double range = maxValue() - minValue();
    if (stopsOnly()) return range / (numberOfTickMarks() - 1);
    const double fine = std::abs(m_fineValueControlStep);
    return fine > 0.0 ? fine : range * kPartOfANotch;
}

double QkSliderCell::step() const {
    return altIncrementValue() > 0.0 ? altIncrementValue() : wheelStep();
}

// Returns false when an observer has put an end to it.
bool QkSliderCell::beginRun() {
    if (m_gesture != Gesture::None) return true;
    const WeakPointer<QkSliderCell> self(this);
    m_gesture = Gesture::Run;
    post(kSliderStartTracking);
    return self && m_gesture == Gesture::Run;
}

void QkSliderCell::finishStep(double before) {
    const WeakPointer<QkSliderCell> self(this);
    if (doubleValue() != before) sendActionWithCurrentEvent(false);
    if (!self || m_gesture == Gesture::None) return;
    const bool isRun = m_gesture == Gesture::Run;
    if (isRun) {
        m_scrollWheelToolTipTimer.stop();
        m_scrollWheelToolTipTimer.start();
    } else {  // the pointer goes on from where it is; keys do not know the place
        const SliderTravel way = travel(isFlipped());
        m_mouseOffset = way.grabOffsetAt(way.along(m_pointer), doubleValue());
        m_finePending = 0.0;
    }
    if (View* const view = controlView()) showToolTip(*view);
    // No run loop: nothing would end it.
    if (self && isRun && !m_scrollWheelToolTipTimer.isValid()) endRun();
}

void QkSliderCell::changeInRun(double value) {
    const WeakPointer<QkSliderCell> self(this);
    if (m_altClicked || !beginRun()) return;
    const double before = doubleValue();
    setPlainValue(value);
    if (self) finishStep(before);
}

void QkSliderCell::endRun() {
    if (m_gesture != Gesture::Run) return;
    const WeakPointer<QkSliderCell> self(this);
    m_gesture = Gesture::None;
    m_scrollWheelToolTipTimer.stop();
    post(kSliderStopTracking);
    if (self && m_gesture == Gesture::None) closeToolTip();
}

void QkSliderCell::scrollWheelToolTipTimerCallback(QkTimer* /*timer*/) {
    endRun();
}

void QkSliderCell::scrollWheel(const Event& event) {
    if (View* const view = controlView()) scrollWheel(event, *view);
}

void QkSliderCell::scrollWheel(const Event& event, View& controlView) {
    if (!isEnabled()) return;
    setControlView(&controlView);
    if (event.scrollPhase == ScrollPhase::Began) m_wheel.reset();
    // Up and to the right is more.
    const int notches = m_wheel.add(event.deltaY != 0.0F ? event.deltaY : -event.deltaX);
    if (notches == 0) return;
    const double value = std::clamp(valueAfter(notches * wheelStep()), minValue(), maxValue());
    changeInRun(magneticStep(doubleValue(), value, m_magneticMarks, m_magneticMarkDelta));
}

bool QkSliderCell::wantsKey(const Event& event) const {
    const char16_t key = event.plainKey();
    if (!isEnabled()) return false;
    if (key == kEscapeCharacter) return m_gesture == Gesture::Drag;
    if (key == kDeleteCharacter || key == kForwardDeleteCharacter)
        return m_altClickSetsDefaultValue;
    return QkLogSliderCell::wantsKey(event);
}

bool QkSliderCell::performKey(const Event& event) {
    if (!wantsKey(event)) return false;
    const char16_t key = event.plainKey();
    if (key == kEscapeCharacter) {
        abandonDrag();
        return true;
    }
    const auto steps = stepsOfKey(key);
    if (!steps) {
        changeInRun(m_defaultValue);
        return true;
    }
    const double fine = std::abs(m_fineValueControlStep);
    const bool isFine = fine > 0.0 && event.modifierFlags.contains(kShiftKeyMask);
    const double wanted = valueAfter(*steps * (isFine ? fine : step()));
    const double value = std::clamp(wanted, minValue(), maxValue());
    changeInRun(std::isinf(*steps)
                    ? value
                    : magneticStep(doubleValue(), value, m_magneticMarks, m_magneticMarkDelta));
    return true;
}

void QkSliderCell::pointerMoved(std::optional<Point> point) {
    const bool isHovered = point && mouseInRect(*point, knobRectFlipped(isFlipped()), isFlipped());
    if (std::exchange(m_isHovered, isHovered) != isHovered) redrawKnob();
}

AccessibilityElement* QkSliderCell::accessibilityParent() const {
    AccessibilityElement* const parent = m_accessibilityParent.get();
    return parent != nullptr ? parent : QkLogSliderCell::accessibilityParent();
}

bool QkSliderCell::setAccessibilityNumber(double value) {
    if (!isEnabled()) return false;
    const WeakPointer<QkSliderCell> self(this);
    if (m_altClicked || !beginRun()) return true;
    const double before = doubleValue();
    setLogSliderValue(value);
    if (self) finishStep(before);
    return true;
}

bool QkSliderCell::performAccessibilityAction(AccessibilityAction action) {
    if (action == AccessibilityAction::Press || !isEnabled()) return false;
    const bool isUp = (action == AccessibilityAction::Increment) != invertValues();
    changeInRun(valueAfter(isUp ? step() : -step()));
    return true;
}

// The value tip.

void QkSliderCell::showToolTip(View& view) {
    Anchored* const source = m_toolTipObject.get();
    if (source == nullptr) return;
    ToolTipWindow& tip = ToolTipWindow::shared();
    const Rect knob = knobRectFlipped(view.isFlipped());
    if (tip.isOpenFor(view, source)) return tip.updateToolTipPosition(knob, view);
    tip.showToolTipWindowForView(view, source, m_toolTipTag, knob,
                                 isVertical() ? ToolTipSide::Beside : ToolTipSide::Above);
}

void QkSliderCell::closeToolTip() {
    const View* const view = controlView();
    ToolTipWindow& tip = ToolTipWindow::shared();
    if (view != nullptr && tip.isOpenFor(*view, m_toolTipObject.get())) tip.closeToolTipWindow();
}

std::string QkSliderCell::stringForTag(std::int32_t /*tag*/) {
    return accessibilityValueText();
}

std::string QkSliderCell::accessibilityValueText() const {
    const double value = logSliderValue();
    if (m_formatter) return m_formatter(value);
    const double least = std::min(std::max(1e-6, step()), 1.0);  // also of NaN
    const int decimals = static_cast<int>(std::ceil(-std::log10(least) - 1e-9));
    const std::string digits(NumberText::fixed(std::abs(value), decimals).view());
    const bool isZero = digits.find_first_not_of("0.") == std::string::npos;
    return value < 0.0 && !isZero ? "\u2212" + digits : digits;
}

}  // namespace veltra
