// SPDX-License-Identifier: MIT
#include "veltra/controls/number_editor/font_fitting.h"

#include "veltra/ui/testing/scripted_port.h"

namespace veltra::testing {
namespace {

// The law, size by size.
float largestThatFits(const FontFitting& fitting) {
    float size = 100.0F;
    for (int tries = 1;; ++tries, size -= 0.5F) {
        float needed = fitting.insets;
        for (const std::string& string : fitting.strings)
            needed += std::ceil(StyledText{string, Font::systemFont(size), {}, {}}.size().width);
        if (fitting.width > needed || tries == 198) return size;
    }
}

TEST(FontFitting, FindsTheLargestOfAllSizesThatFits) {
    const ScriptedPort port;  // a character is half as wide as the font's size
    FontFitting fitting{0.0F, 6.0F, {"000", "/", ".00"}, Font::systemFont(12.0F)};
    for (fitting.width = -3.0F; fitting.width < 400.0F; fitting.width += 0.7F)
        ASSERT_EQ(fittedFont(fitting).size, largestThatFits(fitting)) << fitting.width;
    EXPECT_EQ(fittedFont({0.0F, 0.0F, {"0"}, {}}).size, 1.5F);
    EXPECT_EQ(fittedFont({57.0F, 0.0F, {"0"}, {}}).size, 100.0F);
}

TEST(FontFitting, KeepsAllButTheSizeAndAsksFewTimes) {
    const ScriptedPort port;
    Font font{"Known", 12.0F, FontWeight::Bold, true};
    int asked = 0;
    const auto fit = [&] {
        return fittedFont({50.0F, 0.0F, {"000"}, font},
                          [&](const std::string& text, const Font& f) {
                              ++asked;
                              return static_cast<float>(text.size()) * f.size * 0.5F;
                          });
    };
    EXPECT_EQ(fit(), (Font{"Known", 32.5F, FontWeight::Bold, true}));
    EXPECT_LE(asked, 8);
    font.name = "Unknown";
    EXPECT_EQ(fit(), (Font{"", 32.5F, FontWeight::Bold, true}));
}

}  // namespace
}  // namespace veltra::testing
