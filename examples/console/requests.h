// SPDX-License-Identifier: MIT
// What the program does at its start in either form, and what it answers instead of playing.
#pragma once

#include "options.h"

#include <optional>
#include <string>

namespace veltra::console {

// Tells the framework who this program is. Call it first in main().
void introduceProgram();

// Name and version of the program, then those of the system: two lines.
std::string aboutText();

// Raises an exception with its backtrace, as a mistake in the program would, and lets the user
// decide how to go on: it returns when the answer is to stop or to resume.
void demonstrateException();

// The exit status when the options ask for a text or for the exception; nothing when they ask for
// files.
std::optional<int> answerRequest(const Options& options);

}  // namespace veltra::console
