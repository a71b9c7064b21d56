// SPDX-License-Identifier: MIT
// Marks beside a slider's track, with labels as far as there is room for them.
//
// Thread: main. Realtime-safe: no.
#pragma once

#include "veltra/export.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace veltra {

// One mark beside the track.
struct SliderMark {
    // How the mark is drawn.
    enum class Kind : std::uint8_t {
        Major,
        Minor,      // shorter and quieter
        Centre,     // on both sides of the track
        Reference,  // the same, strong: the value that all others are compared with
    };

    double value = 0.0;       // of the cell
    Kind kind = Kind::Major;  // how it is drawn
    std::string label{};      // empty: none

    // Whether value, kind and label are equal.
    friend bool operator==(const SliderMark&, const SliderMark&) = default;
};

// Which of the labels are written, by their index, when each must keep `distance` from those
// before it: the first ones matter most. `positions` are those of the marks along the track.
VELTRA_EXPORT std::vector<std::size_t> labelsWithRoom(std::span<const SliderMark> marks,
                                                      std::span<const float> positions,
                                                      float distance);

}  // namespace veltra
