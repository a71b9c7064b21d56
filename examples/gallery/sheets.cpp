// SPDX-License-Identifier: MIT
#include "sheets.h"

namespace veltra::gallery {

std::vector<Sheet> sheets() {
    return {
        buttonSheet(),
        stepSheet(),
        keyboardSheet(),
        numberEditorSheet(),
        meterSheet(),
        sliderSheet(),
    };
}

}  // namespace veltra::gallery
