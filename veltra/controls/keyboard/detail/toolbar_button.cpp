// SPDX-License-Identifier: MIT
#include "veltra/controls/keyboard/detail/toolbar_button.h"

#include "veltra/platform/localization.h"
#include "veltra/ui/drawing.h"

namespace veltra::detail {

namespace {

constexpr Rect kFrame{{0.0F, 0.0F}, {28.0F, 22.0F}};  // leaves room for the focus ring in the strip
constexpr float kRadius = 6.0F;

// Two black keys, and the lines between white ones under them.
void drawKeyboard(Canvas& canvas, const Rect& box, Color color) {
    strokeRounded(canvas, box, 1.5F, color, 1.4F);
    const float black = deviceWidth(canvas, 2.0F);
    const float line = deviceWidth(canvas, 1.0F);
    const float half = box.size.height / 2.0F;
    const float upper = canvas.isFlipped() ? box.minY() : box.minY() + half;
    for (const float place : {box.size.width / 3.0F, box.size.width * 2.0F / 3.0F}) {
        const float x = box.minX() + place;
        fillAligned(canvas, {{x - line / 2.0F, box.minY()}, {line, box.size.height}}, color);
        fillAligned(canvas, {{x - black / 2.0F, upper}, {black, half}}, color);
    }
}

}  // namespace

ToolbarButton::ToolbarButton() : Button(kFrame, "", ButtonCell::Kind::Toggle) {
    buttonCell().setCornerRadius(kRadius);
    cell()->setAccessibilityName(localizedString("toolbar"));
    toolTips().addToolTipRect(bounds(), localizedString("Show or hide the toolbar"));
}

void ToolbarButton::drawRect(Canvas& canvas, const Rect& /*dirty*/) {
    const Theme& colors = theme(effectiveAppearance());
    if (cell()->isHighlighted()) {
        fillRounded(canvas, bounds(), kRadius, colors.controlPressed);
    } else if (isOn()) {
        fillRounded(canvas, bounds(), kRadius, colors.accentSoft);
    } else if (buttonCell().isHovered()) {
        fillRounded(canvas, bounds(), kRadius, colors.controlHover);
    }
    const Rect box = bounds().inset(8.0F, 6.0F);
    drawKeyboard(canvas, box, isOn() ? colors.accent : colors.label);
}

}  // namespace veltra::detail
