// SPDX-License-Identifier: MIT
// The letters A to Z and a to z, in every locale. Every other character stays as it is.
// Thread: any. Realtime-safe: yes, all of it.
#pragma once

#include <algorithm>
#include <string_view>

namespace veltra {

template <typename Character>
constexpr Character smallAscii(Character character) noexcept {
    const bool isCapital = character >= Character{'A'} && character <= Character{'Z'};
    return isCapital ? static_cast<Character>(character - 'A' + 'a') : character;
}

inline bool equalButForAsciiCase(std::string_view one, std::string_view other) noexcept {
    return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                      [](char left, char right) { return smallAscii(left) == smallAscii(right); });
}

}  // namespace veltra
