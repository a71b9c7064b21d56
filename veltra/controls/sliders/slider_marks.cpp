// SPDX-License-Identifier: MIT
#include "veltra/controls/sliders/slider_marks.h"

#include <algorithm>
#include <cmath>

namespace veltra {

std::vector<std::size_t> labelsWithRoom(std::span<const SliderMark> marks,
                                        std::span<const float> positions, float distance) {
    std::vector<std::size_t> written;
    const std::size_t count = std::min(marks.size(), positions.size());
    for (std::size_t i = 0; i < count; ++i) {
        const bool hasRoom = std::all_of(written.begin(), written.end(), [&](std::size_t other) {
            return std::abs(positions[other] - positions[i]) >= distance;
        });
        if (hasRoom && !marks[i].label.empty()) written.push_back(i);
    }
    return written;
}

}  // namespace veltra
