// SPDX-License-Identifier: MIT
// Shapes that several controls draw alike, sharp at every scale: edges lie on borders between
// device pixels, lines are whole device pixels wide.
//
// Thread: main, for everything in here. Realtime-safe: no.
#pragma once

#include "veltra/export.h"
#include "veltra/ui/canvas.h"
#include "veltra/ui/theme.h"

namespace veltra {

// A width in points as whole device pixels, at least one, in points.
VELTRA_EXPORT float deviceWidth(const Canvas& canvas, float points);

// Fills the rectangle whose sides are those of `rect` moved to the nearest device pixels.
VELTRA_EXPORT void fillAligned(Canvas& canvas, const Rect& rect, Color color);
VELTRA_EXPORT void fillRounded(Canvas& canvas, const Rect& rect, float radius, Color color);
// A line of deviceWidth(`width`) inside of the edge of `rect`.
VELTRA_EXPORT void strokeRounded(Canvas& canvas, const Rect& rect, float radius, Color color,
                                 float width = 1.0F);
// Both at once: a face with a line around it, the line inside.
VELTRA_EXPORT void drawPlate(Canvas& canvas, const Rect& rect, float radius, Color face,
                             Color edge);

// How far a focus ring reaches beyond the shape that it runs around, in points.
inline constexpr float kFocusRingReach = 4.0F;

// A ring 2 points wide, 2 points away from a shape with corners of `radius`.
VELTRA_EXPORT void drawFocusRing(Canvas& canvas, const Rect& shape, float radius, Color color);

// A soft edge, 3 points wide, around a cap that the pointer is on or drags.
VELTRA_EXPORT void drawHalo(Canvas& canvas, const Rect& shape, float radius, Color accent,
                            bool isDragged);

// The shadow of what floats above the window. It reaches up to 9 points beyond the shape.
VELTRA_EXPORT void drawFloatingShadow(Canvas& canvas, const Rect& shape, float radius,
                                      const Theme& colors);

}  // namespace veltra
