// SPDX-License-Identifier: MIT
#include "veltra/base/base64.h"

#include <algorithm>
#include <cstddef>

namespace veltra {

namespace {

constexpr std::string_view kDigits =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
static_assert(kDigits.size() == 64);

}  // namespace

std::string base64FromBytes(std::span<const std::uint8_t> bytes) {
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t start = 0; start < bytes.size(); start += 3) {
        const auto group =
            bytes.subspan(start).first(std::min<std::size_t>(3, bytes.size() - start));
        std::uint32_t bits = 0;
        for (std::size_t index = 0; index < 3; ++index) {
            bits = bits << 8 | (index < group.size() ? group[index] : 0U);
        }
        for (std::size_t digit = 0; digit < 4; ++digit) {
            text += digit <= group.size() ? kDigits[bits >> (18 - 6 * digit) & 63U] : '=';
        }
    }
    return text;
}

std::optional<std::vector<std::uint8_t>> bytesFromBase64(std::string_view text) {
    std::vector<std::uint8_t> bytes;
    if (text.size() % 4 != 0) return std::nullopt;
    std::size_t padding = 0;
    while (padding < 2 && text.ends_with('=')) {
        text.remove_suffix(1);
        ++padding;
    }
    bytes.reserve(text.size() / 4 * 3 + 2);
    std::uint32_t bits = 0;
    unsigned bitCount = 0;
    for (const char character : text) {
        const std::size_t digit = kDigits.find(character);
        if (digit == std::string_view::npos) return std::nullopt;
        bits = bits << 6 | static_cast<std::uint32_t>(digit);
        bitCount += 6;
        if (bitCount < 8) continue;
        bitCount -= 8;
        bytes.push_back(static_cast<std::uint8_t>(bits >> bitCount));
        bits &= (1U << bitCount) - 1U;
    }
    if (bits != 0) return std::nullopt;
    return bytes;
}

}  // namespace veltra
