// SPDX-License-Identifier: MIT
#include "veltra/platform/linux/terminal_text.h"

#include "veltra/base/utf8.h"

#include <algorithm>
#include <array>

namespace veltra {

namespace {

bool isHarmless(char32_t code) noexcept {
    const bool isControl = code >= 0x80 && code <= 0x9F;
    const bool turnsDirection = (code >= 0x202A && code <= 0x202E) ||
                                (code >= 0x2066 && code <= 0x2069) || code == 0x200E ||
                                code == 0x200F;
    return !isControl && !turnsDirection;
}

}  // namespace

std::size_t terminalText(std::string_view text, std::span<char> out) noexcept {
    std::size_t written = 0;
    while (!text.empty()) {
        const DecodedCharacter character = firstCharacter(text);
        std::array<char, 2> caret = {'^', static_cast<char>((character.code ^ 0x40U) & 0x7FU)};
        std::string_view shown = text.substr(0, character.length);
        const bool isControl = character.code < 0x20 || character.code == 0x7F;
        if (!character.isWellFormed || (!isControl && !isHarmless(character.code))) {
            shown = "?";
        } else if (character.code == U'\n') {
            shown = "\r\n";  // right for a terminal in raw mode too
        } else if (character.code == U'\t') {
            shown = " ";
        } else if (isControl) {
            shown = {caret.data(), caret.size()};
        }
        if (shown.size() > out.size() - written) break;
        std::copy(shown.begin(), shown.end(), out.begin() + static_cast<std::ptrdiff_t>(written));
        written += shown.size();
        text.remove_prefix(character.length);
    }
    return written;
}

}  // namespace veltra
