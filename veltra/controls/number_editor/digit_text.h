// SPDX-License-Identifier: MIT
// The digits of a number as text: typed, padded, and set against the shadow eights behind them.
//
// Thread: any. Realtime-safe: no.
#pragma once

#include "veltra/export.h"
#include "veltra/ui/geometry.h"
#include "veltra/ui/styled_text.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace veltra {

// The maximum of shadow eights, and of places that zeros are put before a number for.
inline constexpr std::uint32_t kMostShadowEights = 20;
inline constexpr std::uint32_t kMostLeadingZeros = 255;

// `text` with one more digit. When that makes it longer than `longest`, digits fall off at its
// front: typing moves them in from the right.
VELTRA_EXPORT std::string withDigitTyped(std::string_view text, char digit, std::uint32_t longest);

// `text` (UTF-8) without its last character; an empty one stays empty.
VELTRA_EXPORT std::string withoutLastCharacter(std::string_view text);

// The number with zeros in front, until it is `places` characters long, the minus included. More
// than 255 places count as 255.
VELTRA_EXPORT std::string zeroPadded(std::int32_t number, std::uint32_t places);

// The zeros that a text begins with, and what follows them. A text of zeros alone has no rest.
struct SplitDigits {
    std::string_view zeros;  // what is drawn faintly
    std::string_view rest;   // from the first other character on
};

// Splits `digits`, which both parts then point into: empty parts, too.
VELTRA_EXPORT SplitDigits splitLeadingZeros(std::string_view digits) noexcept;

// So many eights, at most 20.
VELTRA_EXPORT std::string shadowEights(std::uint32_t count);

// The number as it stands before so many eights: with spaces before it up to their number, or, on
// the left, with up to 16 spaces behind it and cut to their number.
VELTRA_EXPORT std::string linedUpWithEights(std::int32_t number, std::uint32_t eights,
                                            TextAlignment alignment);

// What is left free around the digits of a cell, in points.
struct DigitInsets {
    float left = 1.0F;      // before the digits
    float right = 1.0F;     // behind them
    float vertical = 0.0F;  // above and, once more, below
};

// Where in the frame of a cell the line of digits stands: in the middle of the height, on a whole
// point. Deliberately measured from 0, not from the lower or upper side of the frame: the cells of
// a number editor are as high as the control.
VELTRA_EXPORT Rect digitRect(const Rect& frame, float lineHeight,
                             const DigitInsets& insets) noexcept;

// The rounded ground behind the digits that are being edited, and the radius of its corners.
VELTRA_EXPORT Rect editingRect(const Rect& frame) noexcept;
VELTRA_EXPORT float editingRadius(const Rect& frame) noexcept;

}  // namespace veltra
