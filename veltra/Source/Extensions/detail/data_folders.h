// SPDX-License-Identifier: MIT
// The folders for the data of programs, by the conventions of the desktop.
#pragma once

#include <string>
#include <vector>

namespace veltra::detail {

// Empty when there is none. Raises std::bad_alloc.
std::string userDataFolder();

// The user's own first, then the system's; only the system's, and not by the environment, when the
// program runs with more rights than its user. Raises std::bad_alloc.
std::vector<std::string> dataFolders();

}  // namespace veltra::detail
