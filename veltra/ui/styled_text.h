// SPDX-License-Identifier: MIT
// One line of text with its font and colour, to be measured and drawn.
#pragma once

#include "veltra/export.h"
#include "veltra/ui/color.h"
#include "veltra/ui/font.h"
#include "veltra/ui/geometry.h"

#include <cstdint>
#include <string>

namespace veltra {

// Where a line stands in the width of a rectangle.
enum class TextAlignment : std::uint8_t { Left, Center, Right };
// In the height of a rectangle: the line in the middle; the top of the line at the upper side; the
// capitals in the middle and their foot on a border between device pixels.
enum class TextPlacement : std::uint8_t { Center, Top, Capitals };

// Which part of a line that is too long gives way to an ellipsis.
enum class TextTruncation : std::uint8_t { End, Middle };

// A line, and all that decides how it looks.
struct VELTRA_EXPORT StyledText {
    std::string string;                             // UTF-8
    Font font;                                      // of the whole line
    Color color;                                    // of the whole line
    TextAlignment alignment = TextAlignment::Left;  // in the rectangle that it is drawn in

    // Whether there are no letters. Blanks count as letters.
    bool isEmpty() const noexcept { return string.empty(); }

    // Width and height of the line as the port draws it, without rounding. Width 0 and the height
    // of a line for an empty text.
    // Thread: main. Realtime-safe: no.
    Size size() const;

    // This text, or as much of it as fits `width` with an ellipsis for what is left out: the end,
    // or the middle, for names that differ in their last letters.
    // Thread: main. Realtime-safe: no.
    StyledText truncatedTo(float width, TextTruncation truncation = TextTruncation::End) const;
};

}  // namespace veltra
