// SPDX-License-Identifier: MIT
// Aliases of the desktop.
#pragma once

#include <optional>
#include <string>

namespace veltra::detail {

// Where an alias leads: the path in a file *.desktop that links to another file. Nothing when it is
// none. Throws std::bad_alloc.
std::optional<std::string> targetOfAlias(const std::string& path);

}  // namespace veltra::detail
