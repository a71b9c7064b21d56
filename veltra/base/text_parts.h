// SPDX-License-Identifier: MIT
// Parts of a text.
// Thread: any. Realtime-safe: yes, all of it.
#pragma once

#include <algorithm>
#include <string_view>

namespace veltra {

// Takes what stands before the next `separator`, or all, off the front of `text`, and the separator
// with it.
inline std::string_view takeUpTo(char separator, std::string_view& text) noexcept {
    const std::size_t end = std::min(text.find(separator), text.size());
    const std::string_view front = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return front;
}

// `text` without white space around it.
inline std::string_view trimmed(std::string_view text) noexcept {
    constexpr std::string_view kWhiteSpace = " \t\n\v\f\r";
    text.remove_prefix(std::min(text.find_first_not_of(kWhiteSpace), text.size()));
    return text.substr(0, text.find_last_not_of(kWhiteSpace) + 1);
}

}  // namespace veltra
