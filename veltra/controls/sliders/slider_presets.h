// SPDX-License-Identifier: MIT
// The two sliders of every mixer, ready made.
//
// Thread: main, for everything in here. Realtime-safe: no.
#pragma once

#include "veltra/controls/sliders/slider_cell.h"

#include <string>

namespace veltra {

// A volume fader. Its value is the travel of FaderScale, 0 to 1, at first 0 dB, which is also its
// default and holds the cap within 0.4 dB. Arrows move it by 0.5 dB where the scale is finest, fine
// steps by 0.1. The tip says decibels. With marks and labels at its left it wants 64 points of
// width, without (`hasScale` false) 40; its travel is the height less 36.
VELTRA_EXPORT void setUpFader(QkSliderCell& cell, bool hasScale = true);

// A pan control: -1 is left, 1 is right, at first and by default 0, which holds the cap within
// 0.03. Wants 28 points of height.
VELTRA_EXPORT void setUpPan(QkSliderCell& cell);

// Such as "L 24", "C", "R 100"; "C" for NaN.
VELTRA_EXPORT std::string panText(double position);

}  // namespace veltra
