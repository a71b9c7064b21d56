// SPDX-License-Identifier: MIT
#include "veltra/ui/drawing.h"

#include <algorithm>
#include <cmath>

namespace veltra {

float deviceWidth(const Canvas& canvas, float points) {
    const float scale = canvas.scale();
    // The little more keeps 1.5 pixels, as at a scale of 1.5, at one.
    return std::max(1.0F, std::round(points * scale - 0.01F)) / scale;
}

void fillAligned(Canvas& canvas, const Rect& rect, Color color) {
    if (!rect.isEmpty()) canvas.fillRect(canvas.alignedToDevice(rect), color);
}

void fillRounded(Canvas& canvas, const Rect& rect, float radius, Color color) {
    if (!rect.isEmpty())
        canvas.fillPath(Path::roundedRect(canvas.alignedToDevice(rect), radius), color);
}

void strokeRounded(Canvas& canvas, const Rect& rect, float radius, Color color, float width) {
    if (rect.isEmpty()) return;
    const float line = deviceWidth(canvas, width);
    const Rect middle = canvas.alignedToDevice(rect).inset(line / 2.0F, line / 2.0F);
    canvas.strokePath(Path::roundedRect(middle, radius - line / 2.0F), color, line);
}

void drawPlate(Canvas& canvas, const Rect& rect, float radius, Color face, Color edge) {
    fillRounded(canvas, rect, radius, face);
    strokeRounded(canvas, rect, radius, edge);
}

void drawFocusRing(Canvas& canvas, const Rect& shape, float radius, Color color) {
    strokeRounded(canvas, shape.inset(-kFocusRingReach, -kFocusRingReach), radius + kFocusRingReach,
                  color, 2.0F);
}

void drawHalo(Canvas& canvas, const Rect& shape, float radius, Color accent, bool isDragged) {
    constexpr float kWidth = 3.0F;
    fillRounded(canvas, shape.inset(-kWidth, -kWidth), radius + kWidth,
                accent.withAlpha(isDragged ? 0.30F : 0.14F));
}

void drawFloatingShadow(Canvas& canvas, const Rect& shape, float radius, const Theme& colors) {
    struct Layer {
        float reach;
        float part;  // of the strongest alpha
    };
    constexpr Layer kLayers[] = {{6.0F, 0.5F}, {4.0F, 0.7F}, {2.0F, 1.0F}};
    const Point down{0.0F, canvas.isFlipped() ? 3.0F : -3.0F};
    for (const Layer& layer : kLayers) {
        const Rect grown = shape.movedBy(down).inset(-layer.reach, -layer.reach);
        fillRounded(canvas, grown, radius + layer.reach,
                    kBlack.withAlpha(colors.shadow * layer.part));
    }
}

}  // namespace veltra
