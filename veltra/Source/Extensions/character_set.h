// SPDX-License-Identifier: MIT
// Sets of characters, for the extensions that delete or replace what is in one.
//
//   const CharacterSet digits({{U'0', U'9'}});
//   stringByDeletingCharactersInSet("Take 12", digits)                     // "Take "
//   stringByDeletingCharactersInSet("Take 12", digits.inverted())          // "12"
#pragma once

#include "veltra/export.h"

#include <initializer_list>
#include <string_view>
#include <vector>

namespace veltra {

// Code points from `first` to `last`, both included.
struct CharacterRange {
    char32_t first;  // a code point, as the next
    char32_t last;   // below `first`: the range has no characters
};

// Thread: any; one set may be read by several threads. Realtime-safe: contains(), yes; the rest,
// no. What makes a set throws std::bad_alloc.
class VELTRA_EXPORT CharacterSet {
public:
    CharacterSet() noexcept = default;  // the empty set

    // In any order; they may overlap. A range whose last is below its first has no characters.
    explicit CharacterSet(std::initializer_list<CharacterRange> ranges);

    // The characters of a text in UTF-8. Bytes that are not UTF-8 are left out.
    static CharacterSet withCharactersInString(std::string_view characters);

    // What stringByConvertingToXML() deletes: the code points of Unicode 15 that control something
    // and show nothing, its categories Cc and Cf. Tab and line feed are among them, and so are the
    // soft hyphen, the byte order mark and the marks of writing direction.
    static CharacterSet controlCharacterSet();

    // All code points up to U+10FFFF that are not in this one.
    CharacterSet inverted() const;

    // Whether this code point is in the set. Takes as many steps as the logarithm of the number of
    // ranges.
    bool contains(char32_t character) const noexcept;

private:
    explicit CharacterSet(std::vector<CharacterRange> ranges);

    std::vector<CharacterRange> m_ranges;  // in order, apart from one another
};

}  // namespace veltra
