// SPDX-License-Identifier: MIT
#include "veltra/controls/number_editor/font_fitting.h"

#include "veltra/ui/styled_text.h"

#include <cmath>

namespace veltra {

namespace {

constexpr int kSizes = 198;
constexpr float kLargest = 100.0F;
constexpr float kStep = 0.5F;

Font fontOfSize(const Font& font, float size) {
    const auto named = Font::fontWithName(font.name, size, font.weight, font.hasEqualDigits);
    return named.value_or(Font{{}, size, font.weight, font.hasEqualDigits});
}

}  // namespace

Font fittedFont(const FontFitting& fitting, const StringWidth& widthOf) {
    const auto fontAt = [&fitting](int index) {
        return fontOfSize(fitting.font, kLargest - kStep * static_cast<float>(index));
    };
    const auto fits = [&](int index) {
        const Font font = fontAt(index);
        float needed = fitting.insets;
        for (const std::string& string : fitting.strings)
            needed += std::ceil(widthOf(string, font));
        return fitting.width > needed;
    };
    // Widths never fall with the size, so all sizes below the first that fits do as well.
    int first = 0;
    int last = kSizes - 1;
    while (first < last) {
        const int middle = first + (last - first) / 2;
        if (fits(middle)) {
            last = middle;
        } else {
            first = middle + 1;
        }
    }
    return fontAt(first);
}

Font fittedFont(const FontFitting& fitting) {
    return fittedFont(fitting, [](const std::string& string, const Font& font) {
        return StyledText{string, font, kBlack, TextAlignment::Left}.size().width;
    });
}

}  // namespace veltra
