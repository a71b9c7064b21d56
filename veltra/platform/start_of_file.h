// SPDX-License-Identifier: MIT
// Small files as text.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace veltra {

// The first `limit` bytes of a file, or all of it where there are fewer, read by the steps of
// FileSystem. Nothing when it is no file (a pipe, say, would wait for its writer) or cannot be
// read. Throws std::bad_alloc. Thread: any. Realtime-safe: no.
std::optional<std::string> startOfFile(const std::string& path, std::size_t limit);

}  // namespace veltra
