// SPDX-License-Identifier: MIT
#include "veltra/controls/keyboard/keyboard_toolbar_view.h"

#include "veltra/ui/drawing.h"

namespace veltra {

KeyboardToolbarView::KeyboardToolbarView(const Rect& frame) : View(frame) {
    setAutoresizingMask(kViewWidthSizable);
}

KeyboardToolbarView::~KeyboardToolbarView() {
    cutAnchor();
}

void KeyboardToolbarView::drawRect(Canvas& canvas, const Rect& /*dirty*/) {
    const Theme& colors = theme(effectiveAppearance());
    fillAligned(canvas, bounds(), colors.card);
    const float line = deviceWidth(canvas, 1.0F);
    const float foot = isFlipped() ? bounds().size.height - line : 0.0F;
    fillAligned(canvas, {{0.0F, foot}, {bounds().size.width, line}}, colors.line);
}

}  // namespace veltra
