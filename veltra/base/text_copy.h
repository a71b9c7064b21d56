// SPDX-License-Identifier: MIT
// For exported functions that write a text into a buffer of their caller's.
#pragma once

#include "veltra/base/whole_characters.h"

#include <cstddef>
#include <cstring>
#include <string_view>

namespace veltra {

// Writes whole characters, at most `capacity` - 1 bytes, then a NUL; nothing with `capacity` 0 or a
// null `destination`. Returns the length of the whole text, so that a result of `capacity` or more
// tells that the copy was cut.
// Thread: any. Realtime-safe: yes.
inline std::size_t copyText(std::string_view text, char* destination,
                            std::size_t capacity) noexcept {
    if (destination == nullptr || capacity == 0) return text.size();
    const bool isCut = text.size() >= capacity;
    const std::string_view copied = isCut ? wholeCharacters(text.substr(0, capacity - 1)) : text;
    if (!copied.empty()) std::memcpy(destination, copied.data(), copied.size());
    destination[copied.size()] = '\0';
    return text.size();
}

}  // namespace veltra
