#include "veltra/diagnostics/detail/text_buffer.h"

#include <cstdint>
#include <cstdio>
#include <string>

#include <gtest/gtest.h>

namespace veltra {
namespace {

TEST(TextBuffer, GrowsOutOfItsOwnMemoryWithoutLosingAByte) {
    LocalTextBuffer<8> text;
    std::string expected;
    for (int count = 0; count < 300; ++count) {
        const std::string piece(static_cast<std::size_t>(count % 7),
                                static_cast<char>('a' + count % 26));
        text.append(piece);
        expected += piece;
        ASSERT_EQ(text.view(), expected);
    }
}

TEST(TextBuffer, NumbersReadAsPrintfWritesThem) {
    for (const std::int64_t value : {std::int64_t{0}, std::int64_t{7}, std::int64_t{-5},
                                     std::int64_t{42}, std::int64_t{-123456}, INT64_MAX, INT64_MIN})
        for (const int digits : {1, 2, 3, 4, 9}) {
            LocalTextBuffer<32> text;
            text.appendDecimal(value, digits);
            char expected[32];
            std::snprintf(expected, sizeof expected, "%0*lld", digits,
                          static_cast<long long>(value));
            EXPECT_EQ(text.view(), expected);
        }
    for (const std::uint32_t value : {0U, 15U, 16U, 0xa0bU, 0xFFFFFFFFU}) {
        LocalTextBuffer<8> text;
        text.appendHexadecimal(value);
        char expected[16];
        std::snprintf(expected, sizeof expected, "%x", value);
        EXPECT_EQ(text.view(), expected);
    }
}

TEST(TextBuffer, PairsOfPercentSignsCollapseFromLeftToRight) {
    for (const auto& [before, after] : {std::pair{"%%", "%"},
                                        {"%", "%"},
                                        {"%%%", "%%"},
                                        {"", ""},
                                        {"%%%%", "%%"},
                                        {"a%%b%d%", "a%b%d%"},
                                        {"%d%%", "%d%"}}) {
        LocalTextBuffer<16> text;
        text.append(before);
        text.collapsePercentPairs();
        EXPECT_EQ(text.view(), after);
    }
}

}  // namespace
}  // namespace veltra
