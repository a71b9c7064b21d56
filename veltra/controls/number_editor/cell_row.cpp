// SPDX-License-Identifier: MIT
#include "veltra/controls/number_editor/cell_row.h"

namespace veltra {

void packFromLeft(std::span<Rect> frames) noexcept {
    float left = 0.0F;
    for (Rect& frame : frames) {
        frame.origin.x = left;
        left += frame.size.width;
    }
}

}  // namespace veltra
