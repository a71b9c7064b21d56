// SPDX-License-Identifier: MIT
// Keeps text that came from anywhere fit for formats that demand UTF-8.
#pragma once

#include <string>
#include <string_view>

namespace veltra {

// No over-long forms, no surrogates, nothing above U+10FFFF, nothing cut short.
bool isWellFormedUtf8(std::string_view text) noexcept;

// `text` with each ill-formed part (the longest start of a sequence that could have been one, else
// a single byte) replaced by U+FFFD. Well-formed text comes back as it is, without a copy.
// Throws std::bad_alloc.
std::string wellFormedUtf8(std::string text);

}  // namespace veltra
