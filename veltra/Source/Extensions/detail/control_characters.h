// SPDX-License-Identifier: MIT
// The code points of Unicode 15 that control something and show nothing: categories Cc and Cf.
#pragma once

#include "veltra/Source/Extensions/character_set.h"

#include <algorithm>
#include <iterator>

namespace veltra::detail {

inline constexpr CharacterRange kControlCharacters[] = {
    {0x0000, 0x001F},    // control codes
    {0x007F, 0x009F},    // delete, and the upper control codes
    {0x00AD, 0x00AD},    // soft hyphen
    {0x0600, 0x0605},    // Arabic number signs
    {0x061C, 0x061C},    // Arabic letter mark
    {0x06DD, 0x06DD},    // Arabic end of verse
    {0x070F, 0x070F},    // Syriac abbreviation mark
    {0x0890, 0x0891},    // Arabic currency marks above
    {0x08E2, 0x08E2},    // Arabic disputed end of verse
    {0x180E, 0x180E},    // Mongolian vowel separator
    {0x200B, 0x200F},    // zero width space, joiners, direction marks
    {0x202A, 0x202E},    // embedded and overridden directions
    {0x2060, 0x2064},    // word joiner, invisible operators
    {0x2066, 0x206F},    // isolated directions, shaping controls
    {0xFEFF, 0xFEFF},    // byte order mark
    {0xFFF9, 0xFFFB},    // interlinear annotation
    {0x110BD, 0x110BD},  // Kaithi number sign
    {0x110CD, 0x110CD},  // Kaithi number sign above
    {0x13430, 0x1343F},  // joiners of hieroglyphs
    {0x1BCA0, 0x1BCA3},  // shorthand controls
    {0x1D173, 0x1D17A},  // musical beams, ties, slurs and phrases
    {0xE0001, 0xE0001},  // language tag
    {0xE0020, 0xE007F},  // tags
};
static_assert(std::size(kControlCharacters) == 23);

constexpr bool isControlCharacter(char32_t code) noexcept {
    const CharacterRange* const after = std::upper_bound(
        std::begin(kControlCharacters), std::end(kControlCharacters), code,
        [](char32_t value, const CharacterRange& range) { return value < range.first; });
    return after != std::begin(kControlCharacters) && code <= after[-1].last;
}

}  // namespace veltra::detail
