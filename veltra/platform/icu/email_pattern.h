// SPDX-License-Identifier: MIT
// The pattern of e-mail addresses, compiled once.
#pragma once

#include <string_view>

namespace veltra {

// As TextServices::matchesEmailPattern(), with false for nothing.
bool matchesCompiledEmailPattern(std::u16string_view text) noexcept;

}  // namespace veltra
