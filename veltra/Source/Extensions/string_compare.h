// SPDX-License-Identifier: MIT
// How texts are compared and searched by the extensions.
//
//   find("Caf\u00E9.wav", "CAF\u00C9", CompareOption::CaseInsensitive)   // position 0, length 5
//
// Without an option, texts are equal when a reader sees the same characters: a letter with its
// accent in one code point equals the letter followed by the accent, as file names from other
// systems have it, and a search for the bare letter does not find the accented one. That needs ICU.
// Without it code points are compared as they are, and only A to Z have small letters.
//
// Texts are UTF-8. A byte that is not is a character of its own, which equals only itself.
// Thread: any. Realtime-safe: no.
#pragma once

#include "veltra/base/flags.h"
#include "veltra/export.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace veltra {

// How to compare and search. None is also a choice: what it means is said above.
enum class CompareOption : std::uint8_t {
    CaseInsensitive = 1,  // large and small letters are the same, in no particular language
    Literal = 2,          // code point for code point
    Backwards = 4,        // searches from the end; equals() does not look at it
    Anchored = 8,         // finds only at the start, or with Backwards at the end; likewise
    Numeric = 64,         // runs of digits 0 to 9 equal by value: "Take 7", "Take 007"; only
                          // equals() looks at it
};

// Options join to a set by `|`.
template <>
inline constexpr bool isFlag<CompareOption> = true;

// Any number of options, none included.
using CompareOptions = Flags<CompareOption>;

// In bytes of UTF-8, from the start of a text.
struct TextRange {
    std::size_t position;  // of the first byte
    std::size_t length;    // 0 is an empty range

    // Whether they begin and end at the same bytes.
    friend constexpr bool operator==(const TextRange&, const TextRange&) noexcept = default;
};

// Whether the whole texts are equal. False when memory is out.
VELTRA_EXPORT bool equals(std::string_view one, std::string_view other,
                          CompareOptions options = {}) noexcept;

// Where `sought` stands in `text`: the first such place, with Backwards the last. The range may
// differ from `sought` in length. Nothing when it stands nowhere, when `sought` is empty, and when
// memory is out.
VELTRA_EXPORT std::optional<TextRange> find(std::string_view text, std::string_view sought,
                                            CompareOptions options = {}) noexcept;

}  // namespace veltra
