// SPDX-License-Identifier: MIT
#include "veltra/base/well_formed_utf8.h"

#include <cstddef>
#include <cstdint>

namespace veltra {

namespace {

struct Step {
    std::size_t length;  // bytes that belong together, at least 1
    bool wellFormed;
};

// The sequence at the start of `text`, which is not empty.
Step nextSequence(std::string_view text) noexcept {
    const auto byteAt = [&](std::size_t index) { return static_cast<std::uint8_t>(text[index]); };
    const std::uint8_t lead = byteAt(0);
    if (lead < 0x80) return {1, true};
    if (lead < 0xC2 || lead > 0xF4) return {1, false};

    const std::size_t length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    // Only the second byte has limits of its own: over-long forms, surrogates, above U+10FFFF.
    std::uint8_t lowest = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    std::uint8_t highest = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    for (std::size_t index = 1; index < length; ++index) {
        if (index >= text.size() || byteAt(index) < lowest || byteAt(index) > highest) {
            return {index, false};
        }
        lowest = 0x80;
        highest = 0xBF;
    }
    return {length, true};
}

}  // namespace

bool isWellFormedUtf8(std::string_view text) noexcept {
    while (!text.empty()) {
        const Step step = nextSequence(text);
        if (!step.wellFormed) return false;
        text.remove_prefix(step.length);
    }
    return true;
}

std::string wellFormedUtf8(std::string text) {
    if (isWellFormedUtf8(text)) return text;
    std::string result;
    for (std::string_view rest = text; !rest.empty();) {
        const Step step = nextSequence(rest);
        result += step.wellFormed ? rest.substr(0, step.length) : std::string_view("\xEF\xBF\xBD");
        rest.remove_prefix(step.length);
    }
    return result;
}

}  // namespace veltra
