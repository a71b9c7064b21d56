// SPDX-License-Identifier: MIT
// The ground of a keyboard window's strip: a card as wide as the window with a line at its foot.
// What a host puts into the strip are its subviews.
//
// Thread: main, for everything in here. Realtime-safe: no.
#pragma once

#include "veltra/export.h"
#include "veltra/ui/view.h"

namespace veltra {

class VELTRA_EXPORT KeyboardToolbarView : public View {
public:
    // At `frame` in the coordinates of its later superview, with nothing in it.
    explicit KeyboardToolbarView(const Rect& frame);
    ~KeyboardToolbarView() override;

    void drawRect(Canvas& canvas, const Rect& dirty) override;
};

}  // namespace veltra
