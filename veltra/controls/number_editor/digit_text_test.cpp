// SPDX-License-Identifier: MIT
#include "veltra/controls/number_editor/digit_text.h"

#include <limits>

#include <gtest/gtest.h>

namespace veltra {
namespace {

TEST(Digits, TypedOnesMoveInFromTheRightAndDeletedOnesGo) {
    std::string text;
    for (const char digit : {'1', '2', '3', '4'})
        text = withDigitTyped(text, digit, 3);
    EXPECT_EQ(text, "234");
    EXPECT_EQ(withDigitTyped("5", '6', 0), "");
    EXPECT_EQ(withDigitTyped("12345", '6', 2), "56");
    for (const char* rest : {"23", "2", "", ""})
        EXPECT_EQ(text = withoutLastCharacter(text), rest);
    EXPECT_EQ(withoutLastCharacter("5\xC2\xB5"), "5");
}

TEST(Digits, ArePaddedAndSplitAndLinedUp) {
    constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();
    struct {
        std::int32_t number;
        std::uint32_t places;
        const char* padded;
        const char* zeros;
        const char* rest;
    } const rows[] = {{7, 3, "007", "00", "7"},      {0, 3, "000", "000", ""},
                      {-7, 3, "-07", "", "-07"},     {-7, 1, "-7", "", "-7"},
                      {1000, 3, "1000", "", "1000"}, {70, 4, "0070", "00", "70"},
                      {0, 0, "0", "0", ""},          {kLeast, 3, "-2147483648", "", "-2147483648"}};
    for (const auto& row : rows) {
        const std::string text = zeroPadded(row.number, row.places);
        EXPECT_EQ(text, row.padded);
        EXPECT_EQ(splitLeadingZeros(text).zeros, row.zeros) << text;
        EXPECT_EQ(splitLeadingZeros(text).rest, row.rest) << text;
    }
    EXPECT_EQ(zeroPadded(1, 0xFFFFFFFF).size(), 255U);
    EXPECT_EQ(shadowEights(3), "888");
    EXPECT_EQ(shadowEights(21).size(), 20U);
    EXPECT_EQ(linedUpWithEights(5, 3, TextAlignment::Right), "  5");
    EXPECT_EQ(linedUpWithEights(-50, 2, TextAlignment::Center), "-50");
    EXPECT_EQ(linedUpWithEights(5, 3, TextAlignment::Left), "5  ");
    EXPECT_EQ(linedUpWithEights(1234, 2, TextAlignment::Left), "12");
    EXPECT_EQ(linedUpWithEights(5, 99, TextAlignment::Left).size(), 17U);
    EXPECT_EQ(linedUpWithEights(5, 99, TextAlignment::Right).size(), 20U);
}

TEST(Digits, StandInTheMiddleOfTheHeightWhateverTheFrameStandsOn) {
    const DigitInsets insets{2.0F, 3.0F, 1.0F};
    // 20 high, a line of 15: the middle is at 2.5, rounded up, and the vertical inset on top.
    EXPECT_EQ(digitRect({{10, 50}, {40, 20}}, 15.0F, insets), (Rect{{12, 4}, {35, 15}}));
    EXPECT_EQ(digitRect({{10, 0}, {40, 12}}, 15.0F, insets), (Rect{{12, 0}, {35, 10}}));
    EXPECT_EQ(editingRect({{10, 4}, {40, 16}}), (Rect{{11.5F, 5.5F}, {37, 13}}));
    EXPECT_EQ(editingRadius({{10, 4}, {40, 16}}), 2.0F);
}

}  // namespace
}  // namespace veltra
