// SPDX-License-Identifier: MIT
// Numbers and seconds as the window and the terminal write them, the same in every locale.
#pragma once

#include <string>

namespace veltra::console {

// With so many digits after the point: "-3.5".
std::string decimalText(double value, int decimals);

// "0:07", "12:34", "1:02:03".
std::string clockTime(double seconds);
// With a tenth: "0:07.1".
std::string preciseTime(double seconds);

// The step of an axis `width` points long that shows `length` seconds, with `distance` points at
// least from label to label.
double axisStep(double length, float width, float distance);
// A label of such an axis: "0.25", "5", "1:30".
std::string axisText(double seconds, double step);

}  // namespace veltra::console
