// SPDX-License-Identifier: MIT
// The button that shows and hides the strip of a keyboard window: a toggle with a little keyboard.
#pragma once

#include "veltra/ui/button.h"

#include <memory>

namespace veltra::detail {

class ToolbarButton final : public Button {
public:
    ToolbarButton();

    void drawRect(Canvas& canvas, const Rect& dirty) override;
};

}  // namespace veltra::detail
