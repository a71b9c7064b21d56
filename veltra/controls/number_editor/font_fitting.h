// SPDX-License-Identifier: MIT
// The largest font with which some strings stand side by side in a given width.
//
//   const Font font = fittedFont({.width = 120.0F, .insets = 6.0F, .strings = {"000", "/", "00"},
//                                 .font = Font::userFont(12.0F)});
//
// Thread: main. Realtime-safe: no.
#pragma once

#include "veltra/export.h"
#include "veltra/ui/font.h"

#include <functional>
#include <string>
#include <vector>

namespace veltra {

// What is to be fitted, and into what.
struct FontFitting {
    float width = 0.0F;                // what there is room for, in points
    float insets = 0.0F;               // what is needed besides the strings
    std::vector<std::string> strings;  // UTF-8; those that stand side by side
    Font font;  // all but the size; where no family of its name is installed, the system's
};

// How wide a string is in a font. Must not fall when the size of the font grows.
using StringWidth = std::function<float(const std::string& string, const Font& font)>;

// Sizes go from 100 points down to 1.5 in steps of half a point. The first fits for which the width
// is greater than the insets and the widths of the strings, each rounded up; the smallest is
// returned when none fits.
VELTRA_EXPORT Font fittedFont(const FontFitting& fitting);
// The same with a ruler of the caller's.
VELTRA_EXPORT Font fittedFont(const FontFitting& fitting, const StringWidth& widthOf);

}  // namespace veltra
