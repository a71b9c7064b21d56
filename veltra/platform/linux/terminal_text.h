// SPDX-License-Identifier: MIT
// Text of unknown origin made safe for a terminal.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

namespace veltra {

// Writes `text` (UTF-8) into `out` so that a terminal shows it and obeys nothing in it: line feeds
// become line ends, tabs blanks, other control characters the caret form ("^[" for escape), and
// what is not UTF-8, a control character beyond ASCII, or turns the writing direction, "?". Answers
// the number of bytes written; text that does not fit is cut after a whole character.
// Thread: any. Realtime-safe: yes.
std::size_t terminalText(std::string_view text, std::span<char> out) noexcept;

}  // namespace veltra
