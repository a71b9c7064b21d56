// SPDX-License-Identifier: MIT
// A picture of the console at the loudest moment of its files, drawn without a screen.
#pragma once

#include "../options.h"

#include <string>
#include <vector>

namespace veltra::console {

// Writes the picture that the options ask for. Returns a line for each file that could not be read,
// which the picture tells of as well, and one when the picture could not be written. Thread: main.
std::vector<std::string> writeLoudestPicture(const Options& options);

}  // namespace veltra::console
