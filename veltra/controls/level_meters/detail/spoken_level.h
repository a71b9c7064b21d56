// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace veltra::detail {

// What a screen reader says of a level: "−4.4 dB". "silence" unless it is above `quietest`, both in
// decibels. `unit` is translated.
std::string spokenLevel(double decibels, double quietest, const std::string& unit);

}  // namespace veltra::detail
