// SPDX-License-Identifier: MIT
#include "veltra/ui/button.h"

#include "veltra/ui/drawing.h"
#include "veltra/ui/keyed_coder.h"

#include <algorithm>
#include <cmath>

namespace veltra {

namespace {

constexpr float kRadius = 6.0F;
constexpr float kToggleRadius = 5.0F;
constexpr float kMargin = 12.0F;
constexpr float kHeight = 24.0F;

constexpr float kIcon = 16.0F;
constexpr float kIconGap = 8.0F;  // to the title

constexpr float kPressed = 0.16F;  // how much darker what is on becomes
constexpr float kHovered = 0.2F;   // how much lighter
constexpr float kFaded = 0.55F;    // how far what is disabled goes towards the card

constexpr char kOn[] = "CELL_ON";

// Whichever of the two is easier to read on it.
Color inkOn(Color face, const Theme& colors) {
    const float luminance = 0.2126F * face.red + 0.7152F * face.green + 0.0722F * face.blue;
    return luminance > 0.45F ? colors.onSwitch : kWhite;
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

void ButtonCell::setStyle(Style style) {
    m_style = style;
    setNeedsDisplay();
}

void ButtonCell::setIcon(Icon icon) {
    m_icon = icon;
    setNeedsDisplay();
}

void ButtonCell::setCornerRadius(std::optional<float> radius) {
    m_radius = radius;
    setNeedsDisplay();
}

float ButtonCell::cornerRadius() const noexcept {
    return m_radius.value_or(m_kind == Kind::Toggle ? kToggleRadius : kRadius);
}

void ButtonCell::setHovered(bool isHovered) {
    if (isHovered == m_isHovered) return;
    m_isHovered = isHovered;
    setNeedsDisplay();
}

ButtonCell::Paint ButtonCell::paint(const Theme& colors, Appearance appearance) const {
    const bool isFilled = m_isOn || m_style == Style::Primary;
    if (!isEnabled()) {
        const Color ink = colors.text.mixedWith(colors.card, kFaded);
        if (m_style == Style::Bare) return {std::nullopt, std::nullopt, ink};
        return {colors.control.mixedWith(colors.card, 0.5F), colors.line, ink};
    }
    if (isFilled) {
        const bool isSoft = m_style == Style::Mode;
        const Color ground = isSoft ? colors.accentSoft : m_onColor.value_or(colors.accent);
        const Color light = isSoft && appearance == Appearance::Light ? colors.accent : kWhite;
        const Color face = isHighlighted() ? ground.mixedWith(kBlack, kPressed)
                           : m_isHovered   ? ground.mixedWith(light, kHovered)
                                           : ground;
        const Color ink = isSoft      ? colors.accent
                          : m_onColor ? inkOn(ground, colors)
                                      : colors.onAccent;
        return {face, std::nullopt, ink};
    }
    // The letter of a switch that is off is quieter than the symbol of an act.
    const bool isQuiet = m_style == Style::Bare || (m_kind == Kind::Toggle && m_icon == nullptr);
    const Color ink = m_style == Style::Danger  ? colors.alert
                      : isQuiet && !m_isHovered ? colors.label
                                                : colors.text;
    if (m_style == Style::Bare && !isHighlighted() && !m_isHovered)
        return {std::nullopt, std::nullopt, ink};
    const Color face = isHighlighted() ? colors.controlPressed
                       : m_isHovered   ? colors.controlHover
                                       : colors.control;
    if (m_style == Style::Bare) return {face, std::nullopt, ink};
    return {face, colors.edge, ink};
}

void ButtonCell::drawInteriorWithFrame(Canvas& canvas, const Rect& frame, View& view) {
    const Appearance appearance = view.effectiveAppearance();
    const Paint paint = this->paint(theme(appearance), appearance);
    const float radius = cornerRadius();
    if (paint.face) fillRounded(canvas, frame, radius, *paint.face);
    if (paint.edge) strokeRounded(canvas, frame, radius, *paint.edge);
    StyledText text = attributedStringValue();
    text.color = paint.ink;
    Rect place = frame;
    if (m_icon != nullptr) {
        const float title = text.isEmpty() ? 0.0F : text.size().width + kIconGap;
        const float left = frame.center().x - (kIcon + title) * 0.5F;
        const float half = canvas.isFlipped() ? -kIcon * 0.5F : kIcon * 0.5F;
        m_icon(canvas, {left, frame.center().y + half}, paint.ink);
        const float taken = left + kIcon + kIconGap - frame.minX();
        place = {{frame.minX() + taken, frame.minY()},
                 {std::max(frame.size.width - taken, 0.0F), frame.size.height}};
        text.alignment = TextAlignment::Left;
    }
    canvas.drawText(text, place, TextPlacement::Capitals);
}

Size ButtonCell::cellSizeForBounds(const Rect& bounds) const {
    const StyledText text = attributedStringValue();
    const float icon = m_icon == nullptr ? 0.0F : kIcon + (text.isEmpty() ? 0.0F : kIconGap);
    const float width = std::ceil(text.size().width) + icon + 2.0F * kMargin;
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
    return isEnabled() && event.isPressKey();
}

void ButtonCell::encodeWithCoder(KeyedCoder& coder) const {
    Cell::encodeWithCoder(coder);
    if (m_kind == Kind::Toggle) coder.encodeBool(m_isOn, kOn);
}

void ButtonCell::decodeWithCoder(const KeyedCoder& coder) {
    const WeakPointer<Cell> self(this);
    Cell::decodeWithCoder(coder);
    if (self && m_kind == Kind::Toggle) setOn(coder.decodeBool(kOn, m_isOn));
}

bool ButtonCell::performAccessibilityAction(AccessibilityAction action) {
    if (action != AccessibilityAction::Press || !isEnabled()) return false;
    performClick();
    return true;
}

Button::Button(const Rect& frame, std::string_view title, ButtonCell::Kind kind)
    : Control(frame, std::make_unique<ButtonCell>(title, kind)) {}

void Button::keyDown(const Event& event) {
    if (!event.isPressKey()) return Control::keyDown(event);
    if (!event.isRepeat) performClick();
}

void Button::mouseEntered(const Event& /*event*/) {
    buttonCell().setHovered(true);
}

void Button::mouseExited(const Event& /*event*/) {
    buttonCell().setHovered(false);
}

// The pointer does not leave what is taken away under it.
void Button::viewDidMoveToWindow() {
    Control::viewDidMoveToWindow();
    buttonCell().setHovered(false);
}

std::optional<View::FocusShape> Button::focusShape() const {
    return FocusShape{bounds(), buttonCell().cornerRadius()};
}

Cursor Button::cursorAt(Point /*point*/) const {
    return isEnabled() ? Cursor::PointingHand : Cursor::Arrow;
}

}  // namespace veltra
