// One line of text with its font and colour, to be measured and drawn.
#pragma once

#include "veltra/export.h"
#include "veltra/platform/ui/color.h"
#include "veltra/platform/ui/font.h"
#include "veltra/platform/ui/geometry.h"

#include <cstdint>
#include <string>

namespace veltra {

enum class TextAlignment : std::uint8_t { Left, Center, Right };

struct VELTRA_EXPORT StyledText {
    std::string string;  // UTF-8
    Font font;
    Color color;
    TextAlignment alignment = TextAlignment::Left;

    bool isEmpty() const noexcept { return string.empty(); }

    // Width and height of the line as the port draws it, without rounding. Width 0 and the height
    // of a line for an empty text.
    // Thread: main. Realtime-safe: no.
    Size size() const;

    // This text, or as much of its beginning as fits `width` with an ellipsis behind it.
    // Thread: main. Realtime-safe: no.
    StyledText truncatedTo(float width) const;
};

}  // namespace veltra
