// SPDX-License-Identifier: MIT
#include "veltra/ui/button.h"

#include "veltra/ui/drawing.h"
#include "veltra/ui/keyed_coder.h"

#include <cmath>

namespace veltra {

namespace {

constexpr float kRadius = 6.0F;
constexpr float kToggleRadius = 5.0F;
constexpr float kMargin = 12.0F;
constexpr float kHeight = 24.0F;

constexpr float kPressed = 0.16F;  // how much darker what is on becomes

constexpr char kOn[] = "CELL_ON";

// Whichever of the two is easier to read on it.
Color inkOn(Color face, const Theme& colors) {
    const float luminance = 0.2126F * face.red + 0.7152F * face.green + 0.0722F * face.blue;
    return luminance > 0.45F ? colors.onSwitch : kWhite;
}

bool isPressKey(const Event& event) noexcept {
    const char16_t key = event.plainKey();
    return key == u' ' || key == kReturnCharacter || key == kEnterCharacter;
}

}  // namespace

ButtonCell::ButtonCell(std::string_view title, Kind kind) : Cell(title), m_kind(kind) {
    setAlignment(TextAlignment::Center);
    sendActionOn({});  // performClick() sends it
}

void ButtonCell::setOn(bool isOn) {
    if (isOn == m_isOn) return;
    m_isOn = isOn;
    setNeedsDisplay();
    postAccessibilityNotification(AccessibilityNotification::StateChanged);
}

void ButtonCell::setOnColor(std::optional<Color> color) {
    m_onColor = color;
    setNeedsDisplay();
}

void ButtonCell::performClick() {
    if (!isEnabled()) return;
    const WeakPointer<ButtonCell> self(this);
    if (m_kind == Kind::Toggle) setOn(!m_isOn);
    if (self) sendAction();
}

void ButtonCell::drawInteriorWithFrame(Canvas& canvas, const Rect& frame, View& view) {
    const Theme& colors = theme(view.effectiveAppearance());
    const float radius = m_kind == Kind::Toggle ? kToggleRadius : kRadius;
    StyledText text = attributedStringValue();
    if (m_isOn && isEnabled()) {
        const Color ground = m_onColor.value_or(colors.accent);
        text.color = m_onColor ? inkOn(ground, colors) : colors.onAccent;
        fillRounded(canvas, frame, radius,
                    isHighlighted() ? ground.mixedWith(kBlack, kPressed) : ground);
    } else {
        drawPlate(canvas, frame, radius, isHighlighted() ? colors.controlPressed : colors.control,
                  isEnabled() ? colors.edge : colors.line);
    }
    canvas.drawText(text, frame, TextPlacement::Capitals);
}

Size ButtonCell::cellSizeForBounds(const Rect& bounds) const {
    const float width = std::ceil(attributedStringValue().size().width) + 2.0F * kMargin;
    return {std::min(width, bounds.size.width), std::min(kHeight, bounds.size.height)};
}

bool ButtonCell::startTracking(Point /*point*/, View& /*view*/) {
    m_isHot = true;
    setHighlighted(true);
    return true;
}

bool ButtonCell::continueTracking(Point /*last*/, Point current, View& view) {
    m_isHot = mouseInRect(current, cellFrame(), view.isFlipped());
    setHighlighted(m_isHot);
    return true;
}

void ButtonCell::stopTracking(Point /*last*/, Point /*stop*/, View& /*view*/, bool mouseIsUp) {
    setHighlighted(false);
    if (mouseIsUp && m_isHot) performClick();
}

AccessibilityRole ButtonCell::accessibilityRole() const {
    return m_kind == Kind::Toggle ? AccessibilityRole::ToggleButton : AccessibilityRole::Button;
}

std::string ButtonCell::accessibilityName() const {
    const std::string name = Cell::accessibilityName();
    return name.empty() ? title() : name;
}

std::vector<AccessibilityAction> ButtonCell::accessibilityActions() const {
    if (!isEnabled()) return {};
    return {AccessibilityAction::Press};
}

bool ButtonCell::wantsKey(const Event& event) const {
    return isEnabled() && isPressKey(event);
}

void ButtonCell::encodeWithCoder(KeyedCoder& coder) const {
    Cell::encodeWithCoder(coder);
    if (m_kind == Kind::Toggle) coder.encodeBool(m_isOn, kOn);
}

void ButtonCell::decodeWithCoder(const KeyedCoder& coder) {
    Cell::decodeWithCoder(coder);
    if (m_kind == Kind::Toggle) setOn(coder.decodeBool(kOn, m_isOn));
}

bool ButtonCell::performAccessibilityAction(AccessibilityAction action) {
    if (action != AccessibilityAction::Press || !isEnabled()) return false;
    performClick();
    return true;
}

Button::Button(const Rect& frame, std::string_view title, ButtonCell::Kind kind)
    : Control(frame, std::make_unique<ButtonCell>(title, kind)) {}

void Button::keyDown(const Event& event) {
    if (isPressKey(event)) return performClick();
    Control::keyDown(event);
}

Cursor Button::cursorAt(Point /*point*/) const {
    return isEnabled() ? Cursor::PointingHand : Cursor::Arrow;
}

}  // namespace veltra
