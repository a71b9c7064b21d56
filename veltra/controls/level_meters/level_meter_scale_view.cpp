// SPDX-License-Identifier: MIT
#include "veltra/controls/level_meters/level_meter_scale_view.h"

#include "veltra/platform/localization.h"
#include "veltra/ui/canvas.h"
#include "veltra/ui/theme.h"

#include <algorithm>
#include <cmath>

namespace veltra {

namespace {

// Points.
constexpr float kFromGlass = 2.0F;
constexpr float kTick = 4.0F;
constexpr float kMajorTick = 6.0F;
constexpr float kFromTicks = 8.0F;      // from the end of a tick at the glass to the labels
constexpr float kUnitDistance = 12.0F;  // from full scale to the middle of "dB"
constexpr float kLabelHeight = 14.0F;
constexpr float kLabelWidth = 40.0F;
constexpr float kLabelSize = 10.0F;

// Draws with places along the meter, counted from full scale towards the low end, and across it,
// counted from the glass.
class Pen {
public:
    Pen(Canvas& canvas, const Rect& bounds, const Rect& levels, LevelMeterOrientation orientation)
        : m_canvas(canvas),
          m_isUpright(orientation == LevelMeterOrientation::Vertical),
          m_start(m_isUpright ? levels.minY() : levels.maxX()),
          m_glass(m_isUpright ? bounds.maxX() : bounds.minY()) {}

    // In the gap that ends at `edge`. Rounded like the gap: rather too thin than too thick.
    void tick(float edge, float length, Color color) {
        const float scale = m_canvas.scale();
        const float thickness = std::max(std::floor(scale + 0.01F), 1.0F) / scale;
        const Rect rect = m_isUpright
                              ? Rect{{m_glass - kFromGlass - length, m_start + edge - thickness},
                                     {length, thickness}}
                              : Rect{{m_start - edge, m_glass + kFromGlass}, {thickness, length}};
        m_canvas.fillRect(m_canvas.alignedToDevice(rect), color);
    }

    void label(float edge, const std::string& string, FontWeight weight, Color color) {
        const StyledText text{string, themeFont(kLabelSize, weight), color,
                              m_isUpright ? TextAlignment::Right : TextAlignment::Center};
        const float middle = m_start + (m_isUpright ? edge - 0.5F : 0.5F - edge);
        const Rect rect =
            m_isUpright
                ? Rect{{m_glass - kFromGlass - kFromTicks - kLabelWidth, middle - kLabelHeight / 2},
                       {kLabelWidth, kLabelHeight}}
                : Rect{{middle - kLabelWidth / 2, m_glass + kFromGlass + kFromTicks},
                       {kLabelWidth, kLabelHeight}};
        m_canvas.drawText(text, rect, TextPlacement::Capitals);
    }

private:
    Canvas& m_canvas;
    const bool m_isUpright;
    const float m_start;
    const float m_glass;
};

}  // namespace

LevelMeterScaleView::~LevelMeterScaleView() {
    cutAnchor();
}

void LevelMeterScaleView::setMeter(QkLevelMeterCell* meter) {
    if (m_meter) m_meter->setScaleView(nullptr);
    m_meter = meter;
    if (meter != nullptr) meter->setScaleView(this);
    setNeedsDisplay();
}

void LevelMeterScaleView::drawRect(Canvas& canvas, const Rect& /*dirty*/) {
    const View* const view = m_meter ? m_meter->controlView() : nullptr;
    if (view == nullptr || m_meter->rectOfLevels().isEmpty()) return;
    const Theme& colors = theme(effectiveAppearance());
    const Rect levels = convertRectFromView(m_meter->rectOfLevels(), view);
    Pen pen(canvas, bounds(), levels, m_meter->orientation());
    const LevelMeterScale scale = m_meter->scale();
    for (const LevelMeterTick& tick : scale.ticks()) {
        pen.tick(tick.edge, tick.isMajor ? kMajorTick : kTick,
                 tick.isMajor ? colors.label : colors.strong);
        if (!tick.isLabelled) continue;
        const bool isFullScale = tick.decibels == 0.0;
        pen.label(tick.edge, LevelMeterScale::label(tick.decibels),
                  isFullScale ? FontWeight::SemiBold : FontWeight::Medium,
                  isFullScale ? colors.text : colors.caption);
    }
    pen.label(-kUnitDistance, localizedString("dB"), FontWeight::Medium, colors.caption);
}

}  // namespace veltra
