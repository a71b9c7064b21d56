// SPDX-License-Identifier: MIT
// What the families' self-checks work on.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace veltra::detail {

// Bytes of every value in no order.
inline constexpr std::array<unsigned char, 4096> kNoise = [] {
    std::array<unsigned char, 4096> noise{};
    std::uint32_t random = 1;
    for (unsigned char& byte : noise) {
        random = random * 1664525U + 1013904223U;
        byte = static_cast<unsigned char>(random >> 24);
    }
    return noise;
}();

}  // namespace veltra::detail
