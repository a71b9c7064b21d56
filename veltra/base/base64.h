// SPDX-License-Identifier: MIT
// Bytes as text: RFC 4648, section 4, with padding and without line breaks.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace veltra {

// Throws std::bad_alloc, as the next one.
std::string base64FromBytes(std::span<const std::uint8_t> bytes);

// Empty for whatever base64FromBytes() does not write: other characters, padding that is missing
// or misplaced, spare bits that are not 0.
std::optional<std::vector<std::uint8_t>> bytesFromBase64(std::string_view text);

}  // namespace veltra
