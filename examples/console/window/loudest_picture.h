// SPDX-License-Identifier: MIT
// A picture of the console at the loudest moment of its files, drawn without a screen.
#pragma once

#include "../options.h"

#include <string>

namespace veltra::console {

// Writes the picture that the options ask for. Answers an empty text, or why that was not possible.
// Files that cannot be read are told of in the picture. Thread: main.
std::string writeLoudestPicture(const Options& options);

}  // namespace veltra::console
