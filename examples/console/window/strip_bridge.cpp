// SPDX-License-Identifier: MIT
#include "strip_bridge.h"

#include "../text.h"
#include "veltra/controls/level_meters/decibel_scale.h"
#include "veltra/ui/drawing.h"

#include <algorithm>
#include <cmath>

namespace veltra::console {

namespace {

constexpr float kRadius = 8.0F;
constexpr float kMargin = 8.0F;
constexpr float kMeterHeight = 22.0F;
constexpr float kFoot = 5.0F;
constexpr float kClipTop = 4.0F;
constexpr float kClipHeight = 3.0F;

}  // namespace

float StripBridge::pitch() const {
    return (bounds().size.width - 2.0F * kMargin) / static_cast<float>(std::max(count(), 1));
}

Rect StripBridge::sightRect() const {
    return {{kMargin + static_cast<float>(m_first) * pitch() - 1.0F, 0.0F},
            {static_cast<float>(m_inSight) * pitch() + 2.0F, bounds().size.height}};
}

void StripBridge::setColumns(std::vector<Column> columns) {
    if (columns == m_columns) return;
    m_columns = std::move(columns);
    setNeedsDisplay();
}

void StripBridge::setSight(int first, int count) {
    if (first == m_first && count == m_inSight) return;
    m_first = first;
    m_inSight = count;
    setNeedsDisplay();
    postAccessibilityNotification(AccessibilityNotification::ValueChanged);
}

void StripBridge::drawRect(Canvas& canvas, const Rect& /*dirty*/) {
    const Theme& colors = theme(effectiveAppearance());
    drawPlate(canvas, bounds(), kRadius, colors.card, colors.line);
    fillRounded(canvas, sightRect(), kRadius, colors.accentSoft);
    strokeRounded(canvas, sightRect(), kRadius, colors.accent, 2.0F);
    const bool isDark = effectiveAppearance() == Appearance::Dark;
    const Color ground =
        colors.glass.mixedWith(isDark ? kWhite : colors.card, isDark ? 0.06F : 0.12F);
    const float pitch = this->pitch();
    const float width = std::clamp(std::floor(pitch - 2.0F), 2.0F, 6.0F);
    const float foot = bounds().size.height - kFoot;
    for (int i = 0; i < count(); ++i) {
        const Column& column = m_columns[static_cast<std::size_t>(i)];
        const float x = kMargin + static_cast<float>(i) * pitch + (pitch - width) * 0.5F;
        fillAligned(canvas, {{x, foot - kMeterHeight}, {width, kMeterHeight}}, ground);
        const float position = static_cast<float>(column.level) / kSteps;
        const Color lit = position > meterPositionForDecibels(-3.0)    ? colors.red.low
                          : position > meterPositionForDecibels(-12.0) ? colors.amber.low
                                                                       : colors.green.high;
        const float height = kMeterHeight * position;
        if (column.level > 0) fillAligned(canvas, {{x, foot - height}, {width, height}}, lit);
        if (column.hasClipped)
            fillAligned(canvas, {{x, kClipTop}, {width, kClipHeight}}, colors.clip);
    }
}

void StripBridge::want(int first) {
    m_wanted = std::clamp(first, 0, std::max(count() - m_inSight, 0));
    if (m_wanted != m_first) sendAction();
}

void StripBridge::mouseDown(const Event& event) {
    const float at = (locationOf(event).x - kMargin) / pitch();
    const auto first = static_cast<float>(m_first);
    const auto inSight = static_cast<float>(m_inSight);
    const bool isOnFrame = at >= first && at < first + inSight;
    m_grab = isOnFrame ? at - first : inSight * 0.5F;
    if (!isOnFrame) want(static_cast<int>(std::lround(at - m_grab)));
}

void StripBridge::mouseDragged(const Event& event) {
    m_isDragged = true;
    const float at = (locationOf(event).x - kMargin) / pitch();
    want(static_cast<int>(std::lround(at - m_grab)));
}

bool StripBridge::wantsKey(const Event& event) const {
    const char16_t key = event.plainKey();
    return key == kLeftArrowCharacter || key == kRightArrowCharacter || key == kPageUpCharacter ||
           key == kPageDownCharacter;
}

void StripBridge::keyDown(const Event& event) {
    switch (event.plainKey()) {
        case kLeftArrowCharacter:
            return want(m_first - 1);
        case kRightArrowCharacter:
            return want(m_first + 1);
        case kPageUpCharacter:
            return want(m_first - m_inSight);
        case kPageDownCharacter:
            return want(m_first + m_inSight);
        default:
            Control::keyDown(event);
    }
}

std::optional<View::FocusShape> StripBridge::focusShape() const {
    return FocusShape{bounds(), kRadius};
}

std::optional<AccessibilityNumber> StripBridge::accessibilityNumber() const {
    return AccessibilityNumber{m_first + 1.0, 1.0, std::max(count() - m_inSight, 0) + 1.0, 1.0};
}

std::string StripBridge::accessibilityValueText() const {
    return formatted("%d to %d of %d", m_first + 1, m_first + m_inSight, count());
}

bool StripBridge::setAccessibilityNumber(double value) {
    if (std::isnan(value)) return false;
    want(static_cast<int>(std::lround(std::clamp(value, 1.0, count() + 1.0))) - 1);
    return true;
}

}  // namespace veltra::console
