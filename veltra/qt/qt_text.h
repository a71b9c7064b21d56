// SPDX-License-Identifier: MIT
// Lines of text, measured and drawn. Qt rounds the sizes of fonts to whole pixels, so that text is
// laid out once at one large size and scaled from there: it then has every size, and grows evenly.
//
// Thread: main. Realtime-safe: no.
#pragma once

#include "veltra/ui/geometry.h"
#include "veltra/ui/styled_text.h"

class QPainter;

namespace veltra {

bool hasQtFontFamily(const std::string& name);

Size qtTextSize(const StyledText& text);

// In the middle of the rectangle's height; what is wider than it is cut off at its sides.
void drawQtText(QPainter& painter, const StyledText& text, const Rect& rect, bool isSmooth);

}  // namespace veltra
