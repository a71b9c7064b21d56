// SPDX-License-Identifier: MIT
// For texts that are cut where a buffer ends.
#pragma once

#include <cstddef>
#include <string_view>

namespace veltra {

// The start of a text without the half of a UTF-8 character that the cut may have left at its end.
// Text that is not UTF-8 there stays as it is.
constexpr std::string_view wholeCharacters(std::string_view start) noexcept {
    constexpr std::size_t kLongestCharacter = 4;
    for (std::size_t back = 1; back < kLongestCharacter && back <= start.size(); ++back) {
        const auto byte = static_cast<unsigned char>(start[start.size() - back]);
        if (byte < 0x80) break;
        if (byte < 0xC0) continue;  // inside a character: its first byte stands before
        const std::size_t length = byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : 4;
        return length > back ? start.substr(0, start.size() - back) : start;
    }
    return start;
}

}  // namespace veltra
