// SPDX-License-Identifier: MIT
#include "sheets.h"

namespace veltra::gallery {

std::vector<Sheet> sheets() {
    return {
        meterSheet(),    sliderSheet(), numberEditorSheet(),
        keyboardSheet(), buttonSheet(), stepSheet(),
    };
}

}  // namespace veltra::gallery
