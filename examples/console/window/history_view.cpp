// SPDX-License-Identifier: MIT
#include "history_view.h"

#include "veltra/controls/level_meters/decibel_scale.h"
#include "veltra/ui/drawing.h"

#include <algorithm>
#include <cmath>

namespace veltra::console {

namespace {

constexpr float kRadius = 4.0F;
constexpr float kSides = 2.0F;
constexpr float kTop = 3.0F;
constexpr float kAxisHeight = 18.0F;
constexpr std::size_t kColumns = 75;  // 0.4 s each
constexpr double kColumnSeconds = HistoryView::kSeconds / static_cast<double>(kColumns);

}  // namespace

Rect HistoryView::field() const {
    const float axis = m_hasAxis ? kAxisHeight : 0.0F;
    return {{}, {bounds().size.width, std::max(bounds().size.height - axis, 0.0F)}};
}

void HistoryView::setHasAxis(bool hasAxis) {
    if (hasAxis == m_hasAxis) return;
    m_hasAxis = hasAxis;
    setNeedsDisplay();
}

void HistoryView::add(float peak, Moment now) {
    const auto column = static_cast<std::int64_t>((now - Moment()).seconds() / kColumnSeconds);
    const bool isNew = m_peaks.empty() || column != m_column;
    const std::int64_t missed = m_peaks.empty() ? 1 : column - m_column;
    m_column = column;
    if (isNew) {
        const auto added = static_cast<std::size_t>(
            std::clamp<std::int64_t>(missed, 1, static_cast<std::int64_t>(kColumns)));
        m_peaks.insert(m_peaks.end(), added, 0.0F);
        while (m_peaks.size() > kColumns)
            m_peaks.pop_front();
        setNeedsDisplayInRect(field());
    }
    if (!(peak > m_peaks.back())) return;
    m_peaks.back() = peak;
    setNeedsDisplayInRect(field());
}

void HistoryView::drawRect(Canvas& canvas, const Rect& dirty) {
    const Theme& colors = theme(effectiveAppearance());
    const Rect field = this->field();
    fillRounded(canvas, field, kRadius, colors.field);
    const float width = field.size.width - 2.0F * kSides;
    const float pitch = width / static_cast<float>(kColumns);
    const float height = field.size.height - kTop - kSides;
    float right = field.maxX() - kSides;
    for (auto peak = m_peaks.rbegin(); peak != m_peaks.rend(); ++peak, right -= pitch) {
        const float part = std::clamp(meterPositionForAmplitude(*peak), 0.0F, 1.0F);
        if (!(part > 0.0F)) continue;
        const bool hasClipped = *peak > 1.0F;
        const float thick = hasClipped ? std::max(pitch, 1.0F) : std::max(pitch * 0.5F, 1.0F);
        fillAligned(
            canvas,
            {{right - thick, field.maxY() - kSides - part * height}, {thick, part * height}},
            hasClipped ? colors.alert : colors.wave);
    }
    if (!m_hasAxis || dirty.maxY() <= field.maxY()) return;
    const Font font = themeFont(10.0F, FontWeight::Medium);
    const auto label = [&](float x, const char* string, TextAlignment alignment) {
        canvas.drawText({string, font, colors.caption, alignment},
                        {{x, field.maxY() + 5.0F}, {30.0F, 12.0F}}, TextPlacement::Capitals);
    };
    for (int third = 0; third <= 3; ++third) {
        const float x = kSides + std::min(width * static_cast<float>(third) / 3.0F, width - 1.0F);
        fillAligned(canvas, {{x, field.maxY() + 2.0F}, {1.0F, 3.0F}}, colors.strong);
    }
    label(kSides - 1.0F, "\u221230", TextAlignment::Left);
    label(kSides + width / 3.0F - 15.0F, "\u221220", TextAlignment::Center);
    label(kSides + width * 2.0F / 3.0F - 15.0F, "\u221210", TextAlignment::Center);
    label(field.maxX() - 30.0F, "s", TextAlignment::Right);
}

}  // namespace veltra::console
