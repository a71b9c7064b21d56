// SPDX-License-Identifier: MIT
// Whole texts from one form of Unicode to the other.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace veltra {

// Nothing when `text` is ill-formed. These throw std::bad_alloc.
std::optional<std::u16string> utf16From(std::string_view text);
std::optional<std::string> utf8From(std::u16string_view text);

}  // namespace veltra
