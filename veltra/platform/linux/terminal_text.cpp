// SPDX-License-Identifier: MIT
#include "veltra/platform/linux/terminal_text.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace veltra {

namespace {

struct Character {
    std::size_t length;  // bytes of the text that it takes
    std::uint32_t code;  // kNotACharacter for a byte that starts no sequence
};

constexpr std::uint32_t kNotACharacter = 0xFFFFFFFF;

Character firstCharacter(std::string_view text) noexcept {
    constexpr std::array<std::uint32_t, 5> kSmallestOfLength = {0, 0, 0x80, 0x800, 0x10000};
    const auto byte = [text](std::size_t index) {
        return static_cast<std::uint32_t>(static_cast<unsigned char>(text[index]));
    };
    const std::uint32_t lead = byte(0);
    if (lead < 0x80) return {1, lead};
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC0 || lead > 0xF7 || text.size() < length) return {1, kNotACharacter};
    std::uint32_t code = lead & (0x7FU >> length);
    for (std::size_t index = 1; index < length; ++index) {
        if ((byte(index) & 0xC0U) != 0x80) return {1, kNotACharacter};
        code = code << 6U | (byte(index) & 0x3FU);
    }
    const bool isSurrogate = code >= 0xD800 && code <= 0xDFFF;
    if (code < kSmallestOfLength[length] || code > 0x10FFFF || isSurrogate) {
        return {1, kNotACharacter};
    }
    return {length, code};
}

bool isHarmless(std::uint32_t code) noexcept {
    const bool isControl = code >= 0x80 && code <= 0x9F;
    const bool turnsDirection = (code >= 0x202A && code <= 0x202E) ||
                                (code >= 0x2066 && code <= 0x2069) || code == 0x200E ||
                                code == 0x200F;
    return code != kNotACharacter && !isControl && !turnsDirection;
}

}  // namespace

std::size_t terminalText(std::string_view text, std::span<char> out) noexcept {
    std::size_t written = 0;
    while (!text.empty()) {
        const Character character = firstCharacter(text);
        std::array<char, 2> caret = {'^', static_cast<char>((character.code ^ 0x40U) & 0x7FU)};
        std::string_view shown = text.substr(0, character.length);
        if (character.code == '\n') {
            shown = "\r\n";  // right for a terminal in raw mode too
        } else if (character.code == '\t') {
            shown = " ";
        } else if (character.code < 0x20 || character.code == 0x7F) {
            shown = {caret.data(), caret.size()};
        } else if (!isHarmless(character.code)) {
            shown = "?";
        }
        if (shown.size() > out.size() - written) break;
        std::copy(shown.begin(), shown.end(), out.begin() + static_cast<std::ptrdiff_t>(written));
        written += shown.size();
        text.remove_prefix(character.length);
    }
    return written;
}

}  // namespace veltra
