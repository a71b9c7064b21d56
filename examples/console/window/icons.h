// SPDX-License-Identifier: MIT
// The symbols on the console's buttons, each in a square of 16 points: what ButtonCell::setIcon()
// takes.
#pragma once

#include "veltra/ui/canvas.h"

namespace veltra::console {

// Thread: main, for everything in here.
void drawPlayIcon(Canvas& canvas, Point upperLeft, Color color);
void drawStopIcon(Canvas& canvas, Point upperLeft, Color color);
void drawReturnIcon(Canvas& canvas, Point upperLeft, Color color);
void drawLoopIcon(Canvas& canvas, Point upperLeft, Color color);
void drawPlusIcon(Canvas& canvas, Point upperLeft, Color color);
void drawCloseIcon(Canvas& canvas, Point upperLeft, Color color);
void drawMoreIcon(Canvas& canvas, Point upperLeft, Color color);
void drawKeysIcon(Canvas& canvas, Point upperLeft, Color color);
void drawWarningIcon(Canvas& canvas, Point upperLeft, Color color);
void drawClipIcon(Canvas& canvas, Point upperLeft, Color color);

// A rounded rectangle in dashes 6 points long, 5 apart.
void strokeDashed(Canvas& canvas, const Rect& rect, float radius, Color color, float width);

}  // namespace veltra::console
