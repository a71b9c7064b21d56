// SPDX-License-Identifier: MIT
// What small files of the desktop say.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace veltra {

inline constexpr std::size_t kSmallFile = 65536;  // bytes

// The start of a file, up to one byte more than kSmallFile. Nothing when it is no file or cannot be
// read. Raises std::bad_alloc.
std::optional<std::string> startOfFile(const std::string& path);

// Where an alias leads: the path in a file *.desktop that links to another file. Nothing when it is
// none. Raises std::bad_alloc.
std::optional<std::string> targetOfAlias(const std::string& path);

}  // namespace veltra
