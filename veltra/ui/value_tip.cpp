// SPDX-License-Identifier: MIT
#include "veltra/ui/value_tip.h"

#include "veltra/ui/drawing.h"
#include "veltra/ui/theme.h"

#include <algorithm>
#include <cmath>

namespace veltra {

namespace {

constexpr float kHeight = 24.0F;
constexpr float kRadius = 6.0F;
constexpr float kPadding = 8.0F;  // left and right of the text
constexpr float kGap = 3.0F;      // between the arrow and what it points to
constexpr float kArrow = 5.0F;    // its length, and half of its base
constexpr float kShadow = 9.0F;   // how far it reaches
constexpr float kDistance = kGap + kArrow;

StyledText styled(const std::string& text, Color color) {
    return {text, themeFont(12.0F, FontWeight::SemiBold), color, TextAlignment::Center};
}

float within(float low, float value, float high) {
    return std::max(low, std::min(value, high));
}

}  // namespace

ValueTip ValueTip::placed(const std::string& text, const Rect& around, const Rect& room,
                          ToolTipSide side) {
    const float width = std::ceil(styled(text, kBlack).size().width) + 2.0F * kPadding;
    const Point middle = around.center();
    ValueTip tip;
    if (side == ToolTipSide::Beside) {
        const float right = around.maxX() + kDistance;
        const float left = around.minX() - kDistance - width;
        const bool isRight = right + width <= room.maxX() || left < room.minX();
        const float y = within(room.minY(), middle.y - kHeight * 0.5F, room.maxY() - kHeight);
        tip.plate = {{isRight ? right : left, std::round(y)}, {width, kHeight}};
        const float base = isRight ? tip.plate.minX() : tip.plate.maxX();
        const float at = within(tip.plate.minY() + kRadius + kArrow, middle.y,
                                tip.plate.maxY() - kRadius - kArrow);
        tip.arrow[0] = {base, at - kArrow};
        tip.arrow[1] = {isRight ? base - kArrow : base + kArrow, at};
        tip.arrow[2] = {base, at + kArrow};
    } else {
        const float above = around.minY() - kDistance - kHeight;
        const float below = around.maxY() + kDistance;
        const bool isAbove = above >= room.minY() || below + kHeight > room.maxY();
        const float x = within(room.minX(), middle.x - width * 0.5F, room.maxX() - width);
        tip.plate = {{std::round(x), isAbove ? above : below}, {width, kHeight}};
        const float base = isAbove ? tip.plate.maxY() : tip.plate.minY();
        const float at = within(tip.plate.minX() + kRadius + kArrow, middle.x,
                                tip.plate.maxX() - kRadius - kArrow);
        tip.arrow[0] = {at - kArrow, base};
        tip.arrow[1] = {at, isAbove ? base + kArrow : base - kArrow};
        tip.arrow[2] = {at + kArrow, base};
    }
    tip.reach = tip.plate.inset(-kShadow, -kShadow);
    return tip;
}

ValueTip ValueTip::movedBy(Point offset) const {
    ValueTip moved = *this;
    moved.plate = plate.movedBy(offset);
    moved.reach = reach.movedBy(offset);
    for (Point& point : moved.arrow)
        point = point + offset;
    return moved;
}

void ValueTip::draw(Canvas& canvas, const std::string& text, Appearance appearance) const {
    const Theme& colors = theme(appearance);
    drawFloatingShadow(canvas, plate, kRadius, colors);
    // The line around it parts it from glass, which is dark in both appearances.
    fillRounded(canvas, plate.inset(-1.0F, -1.0F), kRadius + 1.0F, colors.tipText);
    fillRounded(canvas, plate, kRadius, colors.tip);
    Path path;
    path.moveTo(arrow[0]);
    path.lineTo(arrow[1]);
    path.lineTo(arrow[2]);
    path.close();
    canvas.fillPath(path, colors.tip);
    canvas.drawText(styled(text, colors.tipText), plate, TextPlacement::Capitals);
}

}  // namespace veltra
