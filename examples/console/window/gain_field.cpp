// SPDX-License-Identifier: MIT
#include "gain_field.h"

#include "../console_state.h"
#include "../times.h"
#include "veltra/controls/level_meters/peak_readout.h"
#include "veltra/controls/sliders/fader_scale.h"
#include "veltra/ui/drawing.h"
#include "veltra/ui/window.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace veltra::console {

namespace {

constexpr float kRadius = 4.0F;
constexpr float kFontSize = 11.0F;
constexpr double kFine = 0.1;
constexpr double kCoarse = 0.5;
constexpr std::size_t kMostTyped = 6;

}  // namespace

void GainField::setDecibels(double decibels) {
    const double kept = std::clamp(decibels, kSilentDecibels, kMost);
    if (kept == m_decibels) return;
    m_decibels = kept;
    setNeedsDisplay();
}

void GainField::change(double decibels) {
    // In whole tenths, so that steps up and down lead back.
    const double rounded = std::round(decibels * 10.0) / 10.0;
    const double before = m_decibels;
    setDecibels(rounded);
    if (m_decibels == before) return;
    postAccessibilityNotification(AccessibilityNotification::ValueChanged);
    sendAction();
}

void GainField::startEditing() {
    m_isEditing = true;
    m_typed.clear();
    setNeedsDisplay();
}

void GainField::stopEditing(bool commits) {
    if (!m_isEditing) return;
    m_isEditing = false;
    setNeedsDisplay();
    const bool hasPlus = m_typed.starts_with('+');
    double value = 0.0;
    const char* const end = m_typed.data() + m_typed.size();
    const auto [rest, error] = std::from_chars(m_typed.data() + (hasPlus ? 1 : 0), end, value);
    if (commits && error == std::errc() && rest == end) change(value);
}

bool GainField::resignFirstResponder() {
    stopEditing(true);
    return true;
}

void GainField::mouseDown(const Event& event) {
    m_dragRest = 0.0F;
    if (event.clickCount == 2) startEditing();
}

void GainField::mouseDragged(const Event& event) {
    if (m_isEditing) return;
    m_dragRest -= movementOf(event).y;  // up is more
    const float steps = std::trunc(m_dragRest);
    m_dragRest -= steps;
    if (steps != 0.0F) change(m_decibels + static_cast<double>(steps) * kFine);
}

void GainField::scrollWheel(const Event& event) {
    if (event.deltaY != 0.0F) change(m_decibels + std::copysign(kFine, event.deltaY));
}

void GainField::mouseEntered(const Event& /*event*/) {
    m_isHovered = true;
    setNeedsDisplay();
}

void GainField::mouseExited(const Event& /*event*/) {
    m_isHovered = false;
    setNeedsDisplay();
}

bool GainField::typeKey(char16_t key) {
    const bool isSign = (key == u'-' || key == u'+') && m_typed.empty();
    const bool isPoint = (key == u'.' || key == u',') && m_typed.find('.') == std::string::npos;
    const bool isDigit = key >= u'0' && key <= u'9';
    if (!isSign && !isPoint && !isDigit) return false;
    if (m_typed.size() < kMostTyped) m_typed += isPoint ? '.' : static_cast<char>(key);
    setNeedsDisplay();
    return true;
}

bool GainField::wantsKey(const Event& event) const {
    const char16_t key = event.plainKey();
    const bool isTyped = (key >= u'0' && key <= u'9') || key == u'-' || key == u'+' || key == u'.';
    const bool isStep = key == kUpArrowCharacter || key == kDownArrowCharacter;
    const bool isReturn = key == kReturnCharacter || key == kEnterCharacter;
    if (isTyped || isStep || isReturn || key == kDeleteCharacter) return true;
    return m_isEditing &&
           (key == u',' || key == kEscapeCharacter || key == kForwardDeleteCharacter);
}

void GainField::keyDown(const Event& event) {
    if (!wantsKey(event)) return Control::keyDown(event);
    const char16_t key = event.plainKey();
    const double step = event.modifierFlags.contains(kShiftKeyMask) ? kFine : kCoarse;
    switch (key) {
        case kUpArrowCharacter:
            return change(m_decibels + step);
        case kDownArrowCharacter:
            return change(m_decibels - step);
        case kReturnCharacter:
        case kEnterCharacter:
            return m_isEditing ? stopEditing(true) : startEditing();
        case kEscapeCharacter:
            return stopEditing(false);
        case kDeleteCharacter:
        case kForwardDeleteCharacter:
            if (!m_isEditing) return change(0.0);
            if (!m_typed.empty()) m_typed.pop_back();
            return setNeedsDisplay();
        default:
            if (!m_isEditing) startEditing();
            typeKey(key);
    }
}

void GainField::drawRect(Canvas& canvas, const Rect& /*dirty*/) {
    const Theme& colors = theme(effectiveAppearance());
    StyledText text{m_isEditing ? m_typed : PeakReadout::text(m_decibels),
                    themeFont(kFontSize, FontWeight::Medium),
                    m_decibels == 0.0 ? colors.label : colors.text, TextAlignment::Center};
    if (!m_isEditing) {
        drawPlate(canvas, bounds(), kRadius, colors.field, m_isHovered ? colors.edge : colors.line);
        return canvas.drawText(text, bounds(), TextPlacement::Capitals);
    }
    fillRounded(canvas, bounds(), kRadius, colors.accent);
    text.color = colors.onAccent;
    for (char& character : text.string) {
        if (character != '-') continue;
        text.string.replace(0, 1, "\u2212");
        break;
    }
    canvas.drawText(text, bounds(), TextPlacement::Capitals);
    const float caret = bounds().center().x + text.size().width * 0.5F + 1.0F;
    fillAligned(canvas, {{caret, 5.0F}, {1.5F, bounds().size.height - 10.0F}}, colors.onAccent);
}

std::optional<AccessibilityNumber> GainField::accessibilityNumber() const {
    return AccessibilityNumber{m_decibels, kSilentDecibels, kMost, kCoarse};
}

std::string GainField::accessibilityValueText() const {
    return m_decibels <= PeakReadout::kQuietest ? "silent" : FaderScale::text(m_decibels);
}

bool GainField::setAccessibilityNumber(double value) {
    if (std::isnan(value)) return false;
    change(value);
    return true;
}

}  // namespace veltra::console
