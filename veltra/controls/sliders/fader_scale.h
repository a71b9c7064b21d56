// SPDX-License-Identifier: MIT
// How a fader of a mixer is divided: where along its travel how many decibels stand, and what is
// written beside it. Straight pieces, the finest around 0 dB:
//
//   dB       -inf  -90   -60   -40   -30   -20   -10    0    +10
//   travel     0    0   0.05  0.15  0.25  0.4   0.6   0.8    1
//
//   float gain = FaderScale::gainForTravel(fader.doubleValue());
//
// Thread: any. Realtime-safe: yes, except for what returns text or marks.
#pragma once

#include "veltra/controls/sliders/slider_marks.h"
#include "veltra/export.h"

#include <string>
#include <vector>

namespace veltra {

struct VELTRA_EXPORT FaderScale {
    static constexpr double kZeroTravel = 0.8;  // of 0 dB

    // 0 from -90 dB down and for NaN, 1 from 10 dB up.
    static double travelForDecibels(double decibels) noexcept;
    // Minus infinity at 0, below, and for NaN; 10 from 1 up.
    static double decibelsForTravel(double travel) noexcept;

    // Linear: 1 at 0 dB, 0 at the foot. The sign of a gain does not count.
    static double gainForTravel(double travel) noexcept;
    static double travelForGain(double gain) noexcept;

    // Such as "+3.0 dB", "0.0 dB"; "-∞ dB" from -70 dB down and for NaN. The minus is U+2212.
    static std::string text(double decibels);

    // The marks, with travels as values and with labels, those first that matter most.
    static std::vector<SliderMark> marks();
};

}  // namespace veltra
