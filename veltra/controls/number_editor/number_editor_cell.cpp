// SPDX-License-Identifier: MIT
#include "veltra/controls/number_editor/number_editor_cell.h"

#include "veltra/ui/application.h"
#include "veltra/ui/control.h"
#include "veltra/ui/drawing.h"
#include "veltra/ui/window.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace veltra {

namespace {

constexpr float kCaretWidth = 1.5F;
constexpr float kCaretHeight = 0.84F;  // of the font's size
constexpr float kMostNotches = 1e9F;   // in one event: more than any number has room for

bool isDigit(char16_t key) noexcept {
    return key >= u'0' && key <= u'9';
}

// Behind the last digit.
void drawCaret(Canvas& canvas, const StyledText& text, const Rect& rect) {
    const float width = text.isEmpty() ? 0.0F : text.size().width;
    const float height = text.font.size * kCaretHeight;
    float x = rect.maxX();
    if (text.alignment == TextAlignment::Center) x = rect.center().x + width * 0.5F;
    if (text.alignment == TextAlignment::Left) x = rect.minX() + width;
    fillAligned(canvas, {{x, rect.center().y - height * 0.5F}, {kCaretWidth, height}}, text.color);
}

}  // namespace

QkNumberEditorCellDelegate::~QkNumberEditorCellDelegate() = default;

QkNumberEditorCell::QkNumberEditorCell(std::string_view text) : ActionCell(text) {
    sendActionOn({});  // each step has sent it already: the release has nothing to add
}

QkNumberEditorCell::~QkNumberEditorCell() = default;

void QkNumberEditorCell::setHorizontalTextInsets(float inset) {
    setLeftTextInset(inset);
    setRightTextInset(inset);
}

void QkNumberEditorCell::setHovered(bool isHovered) {
    if (isHovered == m_isHovered) return;
    m_isHovered = isHovered;
    if (m_look != NumberEditorLook::Plain) setNeedsDisplay();
}

// The value.

void QkNumberEditorCell::setNewValueAndSendAction(std::int32_t value) {
    m_editedByNumberKeys = false;
    if (!isEnabled()) return;
    setIntValue(value);
    setNeedsDisplay();
    sendCellAction();
}

void QkNumberEditorCell::sendCellAction() {
    if (target() != nullptr) Application::current().sendAction(action(), target(), this);
}

// Edit mode.

void QkNumberEditorCell::startEditing() {
    if (m_editing || !isEnabled() || !isEditable()) return;
    m_editedByNumberKeys = false;
    m_editing = true;
    setNeedsDisplay();
    postAccessibilityNotification(AccessibilityNotification::FocusGained);
}

void QkNumberEditorCell::stopEditingWithReason(std::int32_t reason, bool resigns) {
    if (!m_editing) return;
    const WeakPointer<QkNumberEditorCell> self(this);
    if (m_editedByNumberKeys) setNewValueAndSendAction(intValue());
    if (!self || !m_editing) return;  // the action may have ended it
    setNeedsDisplay();
    m_editing = false;
    if (QkNumberEditorCellDelegate* const told = m_delegate.get())
        told->stoppedEditingWithReason(*this, reason);
    if (!self || !resigns || controlView() == nullptr) return;
    if (Window* const window = controlView()->window()) window->makeFirstResponder(nullptr);
}

void QkNumberEditorCell::rememberOldValue() {
    if (!m_editedByNumberKeys) m_editedByNumberKeysOldValue = intValue();
}

void QkNumberEditorCell::typeDigit(char digit) {
    const std::string before = m_editedByNumberKeys ? stringValue() : std::string();
    rememberOldValue();
    m_editedByNumberKeys = true;
    setStringValue(withDigitTyped(before, digit, m_maxEditStringLen));
    setNeedsDisplay();
}

void QkNumberEditorCell::deleteDigit() {
    const std::string before = stringValue();
    if (before.empty()) return;
    rememberOldValue();
    m_editedByNumberKeys = true;
    setStringValue(withoutLastCharacter(before));
    setNeedsDisplay();
}

void QkNumberEditorCell::keyDown(const Event& event) {
    if (!m_editing || !isEditable() || event.charactersIgnoringModifiers.empty()) return;
    const char16_t key = event.charactersIgnoringModifiers.front();
    if (isDigit(key)) return typeDigit(static_cast<char>(key));
    const WeakPointer<QkNumberEditorCell> self(this);
    switch (key) {
        case kDeleteCharacter:
            return deleteDigit();
        case kUpArrowCharacter:
            return changeBy(steps().keyed(event.modifierFlags));
        case kDownArrowCharacter:
            return changeBy(-std::int64_t{steps().keyed(event.modifierFlags)});
        case kReturnCharacter:
        case kEnterCharacter:
            setNewValueAndSendAction(intValue());
            if (self) stopEditingWithReason(dfne_se_EnterPressed, true);
            return;
        case kEscapeCharacter:
            if (m_editedByNumberKeys) {
                m_editedByNumberKeys = false;
                setIntValue(m_editedByNumberKeysOldValue);
            }
            return stopEditingWithReason(dfne_se_EscapePressed, true);
        default:
            return;
    }
}

bool QkNumberEditorCell::wantsKey(const Event& event) const {
    constexpr char16_t kKeys[] = {kDeleteCharacter, kUpArrowCharacter, kDownArrowCharacter,
                                  kReturnCharacter, kEnterCharacter,   kEscapeCharacter};
    if (!m_editing || !isEditable()) return false;
    const char16_t key = event.plainKey();
    return isDigit(key) || std::find(std::begin(kKeys), std::end(kKeys), key) != std::end(kKeys);
}

// Tracking.

bool QkNumberEditorCell::startTracking(Point /*point*/, View& /*view*/) {
    return isEditable();
}

bool QkNumberEditorCell::continueTracking(Point last, Point current, View& view) {
    const Event* const event = Application::current().currentEvent();
    const ModifierFlags modifiers = event != nullptr ? event->modifierFlags : ModifierFlags();
    const std::int32_t change = steps().dragged(last.y, current.y, view.isFlipped(), modifiers);
    if (change != 0) changeBy(change);
    return true;
}

// A plain wheel goes by one step, however far it turns. Fine ones send many parts of a notch.
void QkNumberEditorCell::scrollWheel(const Event& event) {
    float notches = event.deltaY;
    std::int64_t count = 1;
    if (event.hasPreciseScrollingDeltas) {
        if (event.scrollPhase == ScrollPhase::Began) m_wheel.reset();
        notches = m_wheel.truncated(event.deltaY);
        count = std::llround(std::clamp(std::fabs(notches), 0.0F, kMostNotches));
    }
    const std::int64_t change = steps().wheeled(notches, event.modifierFlags);
    if (notches != 0.0F && !std::isnan(notches)) changeBy(change * count);
}

// Drawing.

NumberEditorColors QkNumberEditorCell::colors(const View& view) const {
    NumberEditorColors colors = numberEditorColors(m_look, view.effectiveAppearance());
    const auto replace = [](Color& color, const MaybeColor& own) { color = own.value_or(color); };
    replace(colors.text, m_textColor);
    replace(colors.separator, m_textColor);
    replace(colors.editBackground, m_editBackgroundColor);
    replace(colors.editText, m_editTextColor);
    replace(colors.shadowEight, m_shadowEightColor);
    if (!m_leadingZerosColor) return colors;
    colors.leadingZeros = m_leadingZerosColor;
    // On the ground of editing that belongs to the look it could not be read.
    if (m_look == NumberEditorLook::Plain || m_editBackgroundColor)
        colors.editLeadingZeros = m_leadingZerosColor;
    return colors;
}

void QkNumberEditorCell::drawInteriorWithFrame(Canvas& canvas, const Rect& frame, View& view) {
    if (m_drawsBackground && m_backgroundColor) fillAligned(canvas, frame, *m_backgroundColor);
    const bool isLit = m_isHovered && isEnabled() && isEditable();
    if (m_editing) {
        drawEditingBackgroundWithFrame(canvas, frame, view);
    } else if (isLit && m_look != NumberEditorLook::Plain) {
        fillRounded(canvas, editingRect(frame), editingRadius(frame), colors(view).hover);
    }
    drawTitleWithFrame(canvas, frame, view);
}

void QkNumberEditorCell::drawEditingBackgroundWithFrame(Canvas& canvas, const Rect& frame,
                                                        View& view) {
    const Rect rect = editingRect(frame);
    const float radius = editingRadius(frame);
    const Color ground = colors(view).editBackground;
    const Color line = view.systemColor(SystemColor::Grid);
    if (m_look != NumberEditorLook::Plain) return drawPlate(canvas, rect, radius, ground, line);
    const Path path = Path::roundedRect(rect, radius);
    canvas.fillPath(path, ground);
    canvas.strokePath(path, line, 1.0F);
}

// Digits that a look shows just as they were typed.
bool QkNumberEditorCell::isTyped() const noexcept {
    return m_editing && m_editedByNumberKeys && m_look != NumberEditorLook::Plain;
}

std::string QkNumberEditorCell::title() const {
    if (isTyped()) return stringValue();
    if (m_leadingZeros > 0) return zeroPadded(intValue(), m_leadingZeros);
    if (m_shadowEights > 0) return linedUpWithEights(intValue(), m_shadowEights, alignment());
    return stringValue();
}

void QkNumberEditorCell::drawTitleWithFrame(Canvas& canvas, const Rect& frame, View& view) {
    StyledText text = attributedStringValue();
    if (text.isEmpty() && !isTyped()) return;
    const NumberEditorColors with = colors(view);
    const bool isPlain = m_look == NumberEditorLook::Plain;
    const bool isSeparator = !isEditable() && !isPlain;
    text.color = m_editing ? with.editText : isSeparator ? with.separator : with.text;
    if (isSeparator) text.font.weight = FontWeight::Regular;
    text.string = title();
    Rect rect = digitRect(frame, text.size().height,
                          {m_leftTextInset, m_rightTextInset, m_verticalTextInset});
    if (!isPlain) rect = {{rect.minX(), frame.minY()}, {rect.size.width, frame.size.height}};
    const TextPlacement placement = isPlain ? TextPlacement::Top : TextPlacement::Capitals;

    if (m_shadowEights > 0 && (isPlain || !m_editing)) {
        StyledText eights = text;
        eights.string = veltra::shadowEights(m_shadowEights);
        eights.color = with.shadowEight;
        canvas.drawText(eights, rect, placement);
    }
    std::optional<Canvas::StateScope> scope;
    if (m_disableFontSmoothing) {
        scope.emplace(canvas);
        canvas.setFontSmoothing(false);
    }
    const bool hasZeros = m_leadingZeros > 0 && !isTyped();
    drawDigits(canvas, text, rect, placement,
               !hasZeros   ? std::nullopt
               : m_editing ? with.editLeadingZeros
                           : with.leadingZeros);
    if (!isTyped()) return;
    drawCaret(canvas, text, rect);
}

// Zeros and digits are parted so that they meet wherever the text is aligned.
void QkNumberEditorCell::drawDigits(Canvas& canvas, const StyledText& text, const Rect& rect,
                                    TextPlacement placement, const MaybeColor& zerosColor) {
    if (!zerosColor) return canvas.drawText(text, rect, placement);
    const SplitDigits split = splitLeadingZeros(text.string);
    StyledText zeros = text;
    zeros.string = split.zeros;
    zeros.color = *zerosColor;
    StyledText digits = text;
    digits.string = split.rest;
    Rect place = rect;
    if (alignment() != TextAlignment::Right) {
        const float width = zeros.size().width;
        place = {{rect.minX() + width, rect.minY()}, {rect.size.width - width, rect.size.height}};
    }
    canvas.drawText(digits, place, placement);
    const float width = digits.isEmpty() ? 0.0F : digits.size().width;
    canvas.drawText(zeros, {rect.origin, {rect.size.width - width, rect.size.height}}, placement);
}

Size QkNumberEditorCell::cellSizeForBounds(const Rect& bounds) const {
    StyledText text = attributedStringValue();
    if (!m_placeHolderString.empty()) text.string = m_placeHolderString;
    const Size size = text.size();
    return {std::min(std::ceil(size.width) + horizontalTextInsetSum(), bounds.size.width),
            std::min(std::ceil(size.height + 2.0F * m_verticalTextInset), bounds.size.height)};
}

// Accessibility.

AccessibilityRole QkNumberEditorCell::accessibilityRole() const {
    return isEditable() ? AccessibilityRole::Slider : AccessibilityRole::Ignored;
}

std::string QkNumberEditorCell::accessibilityName() const {
    std::string name = ActionCell::accessibilityName();
    if (!name.empty() || controlView() == nullptr) return name;
    return controlView()->accessibilityName();
}

AccessibilityOrientation QkNumberEditorCell::accessibilityOrientation() const {
    return AccessibilityOrientation::Horizontal;
}

std::optional<AccessibilityNumber> QkNumberEditorCell::accessibilityNumber() const {
    using Limits = std::numeric_limits<std::int32_t>;
    return AccessibilityNumber{static_cast<double>(intValue()), Limits::min(), Limits::max(),
                               static_cast<double>(m_minimumDelta)};
}

bool QkNumberEditorCell::setAccessibilityNumber(double value) {
    if (!isEnabled() || !isEditable() || std::isnan(value)) return false;
    Cell number;
    number.setDoubleValue(value);
    setNewValueAndSendAction(number.intValue());
    return true;
}

std::vector<AccessibilityAction> QkNumberEditorCell::accessibilityActions() const {
    if (!isEnabled() || !isEditable()) return {};
    return {AccessibilityAction::Increment, AccessibilityAction::Decrement};
}

bool QkNumberEditorCell::performAccessibilityAction(AccessibilityAction action) {
    if (!isEnabled() || !isEditable() || action == AccessibilityAction::Press) return false;
    const std::int64_t step = m_minimumDelta;
    changeBy(action == AccessibilityAction::Increment ? step : -step);
    return true;
}

bool QkNumberEditorCell::accessibilityIsFocused() const {
    return m_editing && controlView() != nullptr && controlView()->hasKeyboard();
}

}  // namespace veltra
