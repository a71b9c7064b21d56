// SPDX-License-Identifier: MIT
// The way from the terminal program to the one with a window.
#pragma once

#include "options.h"

#include <span>

namespace veltra::console {

// A picture is asked for, or there is a display and nothing speaks against a window.
bool wantsWindow(const Options& options);

// Becomes veltra-console-window with the same arguments. Returns when it is not installed beside
// this program.
void becomeWindow(char** arguments);

// Becomes veltra-console with these arguments and --terminal. Returns when it is not installed
// beside this program.
void becomeTerminal(std::span<char*> arguments);

}  // namespace veltra::console
