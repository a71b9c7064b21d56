// SPDX-License-Identifier: MIT
// UTF-8 and UTF-16 a character at a time. (Whole texts for sample files and the C boundary are
// walked by the processor's kernels.)
// Thread: any. Realtime-safe: yes, all of it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace veltra {

// The start of a text.
struct DecodedCharacter {
    char32_t code;       // 0 when it is not well-formed
    std::size_t length;  // units that belong together, at least 1
    bool isWellFormed;
};

constexpr bool isHighSurrogate(char32_t unit) noexcept {
    return unit >= 0xD800 && unit < 0xDC00;
}

constexpr bool isLowSurrogate(char32_t unit) noexcept {
    return unit >= 0xDC00 && unit < 0xE000;
}

// Whether `byte` stands inside of a character, behind its first byte.
constexpr bool continuesCharacter(char byte) noexcept {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

// The first character of `text`, which is not empty. Ill-formed are over-long forms, surrogates,
// what is above U+10FFFF and what is cut short; the length is then that of the longest start of a
// sequence that could have been one, else a single byte.
constexpr DecodedCharacter firstCharacter(std::string_view text) noexcept {
    const auto byteAt = [&](std::size_t index) { return static_cast<std::uint8_t>(text[index]); };
    const std::uint8_t lead = byteAt(0);
    if (lead < 0x80) return {lead, 1, true};
    if (lead < 0xC2 || lead > 0xF4) return {0, 1, false};

    const std::size_t length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    // Only the second byte has limits of its own: over-long forms, surrogates, above U+10FFFF.
    std::uint8_t lowest = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    std::uint8_t highest = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    char32_t code = lead & (0x7FU >> length);
    for (std::size_t index = 1; index < length; ++index) {
        if (index >= text.size() || byteAt(index) < lowest || byteAt(index) > highest)
            return {0, index, false};
        code = code << 6U | (byteAt(index) & 0x3FU);
        lowest = 0x80;
        highest = 0xBF;
    }
    return {code, length, true};
}

// Likewise; ill-formed is a surrogate without its other half.
constexpr DecodedCharacter firstCharacter(std::u16string_view text) noexcept {
    const char32_t unit = text[0];
    if (!isHighSurrogate(unit) && !isLowSurrogate(unit)) return {unit, 1, true};
    if (isLowSurrogate(unit) || text.size() < 2 || !isLowSurrogate(text[1])) return {0, 1, false};
    return {0x10000 + ((unit - 0xD800U) << 10U) + (text[1] - 0xDC00U), 2, true};
}

// How many units a character takes. `code` is at most 0x10FFFF.
constexpr std::size_t utf8Length(char32_t code) noexcept {
    return code < 0x80 ? 1 : code < 0x800 ? 2 : code < 0x10000 ? 3 : 4;
}

constexpr std::size_t utf16Length(char32_t code) noexcept {
    return code < 0x10000 ? 1 : 2;
}

// Write a character to `destination`, which has room for it.
constexpr void putUtf8(char* destination, char32_t code) noexcept {
    const std::size_t length = utf8Length(code);
    for (std::size_t index = length - 1; index > 0; --index) {
        destination[index] = static_cast<char>(0x80U | (code & 0x3FU));
        code >>= 6U;
    }
    const char32_t mark = length == 1 ? 0 : 0xF0U << (4 - length);
    destination[0] = static_cast<char>(static_cast<unsigned char>(mark | code));
}

constexpr void putUtf16(char16_t* destination, char32_t code) noexcept {
    if (code < 0x10000) {
        destination[0] = static_cast<char16_t>(code);
        return;
    }
    destination[0] = static_cast<char16_t>(0xD800U + ((code - 0x10000U) >> 10U));
    destination[1] = static_cast<char16_t>(0xDC00U + (code & 0x3FFU));
}

}  // namespace veltra
