// SPDX-License-Identifier: MIT
#include "veltra/base/utf8.h"

#include "veltra/base/well_formed_utf8.h"

#include <gtest/gtest.h>

namespace veltra {
namespace {

TEST(Utf8, DecodesExactlyWhatItEncodes) {
    for (char32_t code = 0; code <= 0x10FFFF; ++code) {
        char bytes[4];
        char16_t units[2]{};
        putUtf8(bytes, code);
        putUtf16(units, code);
        const bool isSurrogate = isHighSurrogate(code) || isLowSurrogate(code);
        const DecodedCharacter from8 = firstCharacter(std::string_view(bytes, utf8Length(code)));
        const DecodedCharacter from16 =
            firstCharacter(std::u16string_view(units, utf16Length(code)));
        const auto number = static_cast<std::uint32_t>(code);
        ASSERT_TRUE(from8.isWellFormed != isSurrogate && from16.isWellFormed != isSurrogate)
            << number;
        if (isSurrogate) continue;
        ASSERT_TRUE(from8.code == code && from8.length == utf8Length(code)) << number;
        ASSERT_TRUE(from16.code == code && from16.length == utf16Length(code)) << number;
        for (std::size_t cut = 1; cut < utf8Length(code); ++cut) {
            const DecodedCharacter part = firstCharacter(std::string_view(bytes, cut));
            ASSERT_TRUE(!part.isWellFormed && part.length == cut) << number;
        }
    }
}

TEST(Utf8, ReplacesTheLongestStartOfASequenceAtOnce) {
    const std::pair<std::string, std::string> rows[] = {
        {"", ""},
        {"a\u00E9\u20AC\U0001F3B5", "a\u00E9\u20AC\U0001F3B5"},
        {"\x80\xBFz", "\uFFFD\uFFFDz"},                    // no start
        {"\xC0\xAF\xE0\x80", "\uFFFD\uFFFD\uFFFD\uFFFD"},  // over-long
        {"\xED\xA0\x80", "\uFFFD\uFFFD\uFFFD"},            // a surrogate
        {"\xF4\x90\xF5", "\uFFFD\uFFFD\uFFFD"},            // above U+10FFFF
        {"\xF0\x9F\x8E(\xE2\x82", "\uFFFD(\uFFFD"},        // cut short
    };
    for (const auto& [text, repaired] : rows) {
        EXPECT_EQ(wellFormedUtf8(text), repaired);
        EXPECT_EQ(isWellFormedUtf8(text), text == repaired);
    }
}

}  // namespace
}  // namespace veltra
