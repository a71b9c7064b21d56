// SPDX-License-Identifier: MIT
// Drawing with managed colours:
//
//   const VLColor needle = VLCreateRGBColor(0.9F, 0.2F, 0.1F, 1.0F);
//   setFill(needle, canvas);
//   canvas.fillPath(shape);
//
// A drawing is an object of any class that has setStrokeColor({red, green, blue, alpha}) and
// setFillColor(), which take colours of sRGB. The framework's own is the canvas of
// veltra/ui/canvas.h.
#pragma once

#include "veltra/export.h"
#include "veltra/infrastructure/color_management.h"

namespace veltra {

// The shared spaces of color_management.h under their other names. Never null.
// Thread: any. Realtime-safe: no (the first call makes the space).
inline const VLColorSpace* musicAppsCalibratedRGBColorSpace() noexcept {
    return VLGetCalibratedRGB_NSColorSpace();
}
inline const VLColorSpace* musicAppsCalibratedWhiteColorSpace() noexcept {
    return VLGetCalibratedWhiteColorSpace();
}

// The same colour in the same space, with this alpha.
// Thread: any. Realtime-safe: yes.
inline VLColor createCGColorWithAlpha(VLColor color, float alpha) noexcept {
    color.alpha = alpha;
    return color;
}

// Makes the colour the one that the drawing strokes with, fills with, or both, until another is
// set or the drawing's state ends.
// Thread: the drawing's. Realtime-safe: no.
template <typename Drawing>
void setStroke(const VLColor& color, Drawing& drawing) {
    const VLSrgbColor srgb = VLColorToSrgb(color);
    drawing.setStrokeColor({srgb.red, srgb.green, srgb.blue, srgb.alpha});
}
template <typename Drawing>
void setFill(const VLColor& color, Drawing& drawing) {
    const VLSrgbColor srgb = VLColorToSrgb(color);
    drawing.setFillColor({srgb.red, srgb.green, srgb.blue, srgb.alpha});
}
template <typename Drawing>
void set(const VLColor& color, Drawing& drawing) {
    setStroke(color, drawing);
    setFill(color, drawing);
}

}  // namespace veltra
