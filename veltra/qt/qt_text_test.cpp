// SPDX-License-Identifier: MIT
#include "veltra/qt/qt_text.h"

#include "veltra/qt/testing/on_qt.h"

namespace veltra::testing {
namespace {

TEST_F(OnQt, TextGrowsEvenlyAndFiguresStayInPlace) {
    host(std::make_unique<Probe>(Rect{{}, {50, 50}}));
    const auto width = [](const char* text, float size, bool hasEqualDigits) {
        StyledText styled{text, Font::systemFont(size), kBlack};
        styled.font.hasEqualDigits = hasEqualDigits;
        return styled.size().width;
    };
    const float one = width("Volume -12.5 dB", 10.0F, false);
    for (const float size : {11.5F, 12.0F, 12.5F, 99.5F})
        EXPECT_NEAR(width("Volume -12.5 dB", size, false) / one, size / 10.0F, 1e-3F) << size;
    EXPECT_EQ(width("111.1", 12.5F, true), width("888.8", 12.5F, true));
    EXPECT_FALSE(Font::fontWithName("No such family", 12.0F));
}

TEST_F(OnQt, TextIsLaidOutOnceForAllSizesOfAFont) {
    QtTextSizes sizes;
    StyledText text{"-12.5 dB", Font::systemFont(10.0F), kBlack};
    const Size first = sizes.sizeOf(text);
    for (float size = 1.0F; size < 100.0F; size += 0.5F) {
        text.font.size = size;
        EXPECT_NEAR(sizes.sizeOf(text).width, first.width * size / 10.0F, 1e-2F);
    }
    EXPECT_EQ(sizes.count(), 1U);
    text.font.weight = FontWeight::Bold;
    EXPECT_GT(sizes.sizeOf(text).width, 0.0F);
    text.string += '0';
    EXPECT_GT(sizes.sizeOf(text).width, 0.0F);
    EXPECT_EQ(sizes.count(), 3U);
    for (int i = 0; i < 3000; ++i) {
        text.string = std::to_string(i);
        sizes.sizeOf(text);
    }
    EXPECT_LE(sizes.count(), 1000U);
    sizes.forget();
    EXPECT_EQ(sizes.count(), 0U);
}

}  // namespace
}  // namespace veltra::testing
