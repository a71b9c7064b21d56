// SPDX-License-Identifier: MIT
// Small matters of text.
#pragma once

#include <string>
#include <string_view>

namespace veltra::console {

// `text` as it may stand in a line of a log or a report: control characters, which a file name may
// hold, become question marks.
std::string printable(std::string_view text);

// printf into a string; the result is cut at 255 bytes.
[[gnu::format(printf, 1, 2)]] std::string formatted(const char* format, ...);

}  // namespace veltra::console
