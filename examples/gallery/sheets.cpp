// SPDX-License-Identifier: MIT
#include "sheets.h"

namespace veltra::gallery {

std::vector<Sheet> sheets() {
    return {
        buttonSheet(),
        sliderSheet(),
    };
}

}  // namespace veltra::gallery
