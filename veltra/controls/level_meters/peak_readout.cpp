// SPDX-License-Identifier: MIT
#include "veltra/controls/level_meters/peak_readout.h"

#include "veltra/base/number_text.h"
#include "veltra/controls/level_meters/decibel_scale.h"
#include "veltra/controls/level_meters/detail/spoken_level.h"
#include "veltra/platform/localization.h"
#include "veltra/ui/canvas.h"
#include "veltra/ui/drawing.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace veltra {

namespace {

constexpr char kMinus[] = "\u2212";
constexpr float kRadius = 4.0F;
constexpr float kFontSize = 11.0F;
constexpr double kSilence = -std::numeric_limits<double>::infinity();

// Without a sign where it rounds to 0.
std::string magnitudeText(double decibels) {
    return std::string(NumberText::fixed(std::fabs(decibels), 1).view());
}

}  // namespace

PeakReadout::PeakReadout(const Rect& frame) : Control(frame), m_decibels(kSilence) {}

std::string PeakReadout::text(double decibels) {
    if (!(decibels > kQuietest)) return std::string(kMinus) + "\u221E";
    if (std::isinf(decibels)) return "+\u221E";
    std::string digits = magnitudeText(decibels);
    if (digits == "0.0") return digits;
    return (decibels < 0.0 ? kMinus : "+") + digits;
}

void PeakReadout::show(double decibels) {
    const std::string before = text(m_decibels);
    const bool wasClipped = m_isClipped;
    m_decibels = decibels;
    m_isClipped |= decibels > m_clipDecibels;
    if (m_isClipped == wasClipped && text(m_decibels) == before) return;
    setNeedsDisplay();
    if (m_isClipped != wasClipped)
        postAccessibilityNotification(AccessibilityNotification::ValueChanged);
}

void PeakReadout::raise(float amplitude) {
    const double decibels = decibelsForAmplitude(amplitude);
    if (decibels > m_decibels) show(decibels);
}

void PeakReadout::setDecibels(double decibels) {
    show(std::isnan(decibels) ? kSilence : decibels);
}

void PeakReadout::reset() {
    if (!m_isClipped && m_decibels == kSilence) return;
    m_isClipped = false;
    m_decibels = kSilence;
    setNeedsDisplay();
    postAccessibilityNotification(AccessibilityNotification::ValueChanged);
}

void PeakReadout::setMuted(bool isMuted) {
    if (isMuted == m_isMuted) return;
    m_isMuted = isMuted;
    setNeedsDisplay();
}

void PeakReadout::click() {
    const WeakPointer<View> self(this);
    reset();
    if (self) sendAction();
}

void PeakReadout::mouseDown(const Event& /*event*/) {
    if (isEnabled()) click();
}

void PeakReadout::mouseEntered(const Event& /*event*/) {
    m_isHovered = true;
    setNeedsDisplay();
}

void PeakReadout::mouseExited(const Event& /*event*/) {
    m_isHovered = false;
    setNeedsDisplay();
}

void PeakReadout::keyDown(const Event& event) {
    if (!wantsKey(event)) return Control::keyDown(event);
    if (!event.isRepeat) click();
}

std::optional<View::FocusShape> PeakReadout::focusShape() const {
    return FocusShape{bounds(), kRadius};
}

void PeakReadout::drawRect(Canvas& canvas, const Rect& /*dirty*/) {
    const Theme& colors = theme(effectiveAppearance());
    fillRounded(canvas, bounds(), kRadius, m_isClipped ? colors.clip : colors.glass);
    if (m_isHovered && isEnabled()) strokeRounded(canvas, bounds(), kRadius, colors.strong);

    const bool isQuiet = !(m_decibels > kQuietest) || m_isMuted || !isEnabled();
    const Color onGlass = isQuiet ? colors.glassCaption : colors.glassText;
    const FontWeight weight = m_isClipped ? FontWeight::SemiBold : FontWeight::Medium;
    canvas.drawText({text(m_decibels), themeFont(kFontSize, weight),
                     m_isClipped ? colors.clipText : onGlass, TextAlignment::Center},
                    bounds(), TextPlacement::Capitals);
}

AccessibilityRole PeakReadout::accessibilityRole() const {
    return AccessibilityRole::LevelIndicator;
}

std::string PeakReadout::accessibilityName() const {
    const std::string name = Control::accessibilityName();
    return name.empty() ? localizedString("peak") : name;
}

std::string PeakReadout::accessibilityValueText() const {
    std::string words = detail::spokenLevel(m_decibels, kQuietest, m_unit);
    if (m_isClipped) words += ", " + localizedString("clipped");
    return words;
}

std::vector<AccessibilityAction> PeakReadout::accessibilityActions() const {
    if (!isEnabled()) return {};
    return {AccessibilityAction::Press};
}

bool PeakReadout::performAccessibilityAction(AccessibilityAction action) {
    if (action != AccessibilityAction::Press || !isEnabled()) return false;
    click();
    return true;
}

}  // namespace veltra
