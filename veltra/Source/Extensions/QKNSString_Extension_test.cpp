// SPDX-License-Identifier: MIT
#include "veltra/Source/Extensions/QKNSString_Extension.h"

#include "veltra/Source/Extensions/detail/control_characters.h"
#include "veltra/base/testing/prelude.h"
#include "veltra/platform/text_services.h"

#include <clocale>
#ifdef VELTRA_ICU
#include <unicode/uchar.h>
#endif

namespace veltra {
namespace {

TEST(String, ContainsASubstringUnderTheGivenOptions) {
    EXPECT_TRUE(containsSubstring("Mellotron", "llo"));
    EXPECT_TRUE(containsSubstring("Mellotron", "LLO", CompareOption::CaseInsensitive));
    EXPECT_FALSE(containsSubstring("Mellotron", "LLO") || containsSubstring("Mellotron", ""));
}

TEST(String, ReadsTruthLeniently) {
    for (const char* yes : {"YES", "yes", "True", "y", "1", "-2", "+3", " \t\n\v\f\r007", "1e0",
                            "00000000000000000000001", "99999999999999999999", "5 channels"})
        EXPECT_TRUE(boolValue(yes)) << yes;
    for (const char* no : {"", "no", "0", "-0", "yess", "ye", "t", "on", "0x10", "+-1", "- 1", " ",
                           "-", "000", "0.5", ".5", "yes ", "\u0661"})
        EXPECT_FALSE(boolValue(no)) << no;
}

TEST(String, IsEscapedForXmlOnce) {
    constexpr const char* kPairs[][2] = {{"<a & 'b'>", "&lt;a &amp; &apos;b&apos;&gt;"},
                                         {"&amp;\"", "&amp;amp;&quot;"},
                                         {"a\tb\nc\x7F\u0085\u00AD\u200B\uFEFF\U000E0041d", "abcd"},
                                         {"\u00E9\uFF06\U0001F600", "\u00E9\uFF06\U0001F600"},
                                         {"a\xFF\xE2\x82<", "a\uFFFD\uFFFD&lt;"}};
    for (const auto& [text, xml] : kPairs)
        EXPECT_EQ(stringByConvertingToXML(text), xml);
}

TEST(CharacterSet, OfControlCharactersIsUnicodes) {
#ifdef VELTRA_ICU
    constexpr int kUnicode15 = 15;
    const CharacterSet set = CharacterSet::controlCharacterSet();
    for (char32_t code = 0; code <= 0x10FFFF; ++code) {
        const auto point = static_cast<UChar32>(code);
        UVersionInfo age;
        u_charAge(point, age);
        const bool isControl = (U_GET_GC_MASK(point) & (U_GC_CC_MASK | U_GC_CF_MASK)) != 0;
        if (age[0] > kUnicode15) continue;
        ASSERT_EQ(detail::isControlCharacter(code), isControl) << std::hex << point;
        ASSERT_EQ(set.contains(code), isControl) << std::hex << point;
    }
#else
    GTEST_SKIP() << "built without ICU";
#endif
}

TEST(CharacterSet, HoldsItsRangesHoweverTheyAreGiven) {
    const CharacterSet set({{U'5', U'7'}, {U'z', U'a'}, {U'1', U'2'}, {U'2', U'3'}, {U'6', U'6'}});
    std::string held;
    for (char c = '0'; c <= '9'; ++c) {
        EXPECT_NE(set.contains(static_cast<char32_t>(c)),
                  set.inverted().contains(static_cast<char32_t>(c)));
        if (set.contains(static_cast<char32_t>(c))) held += c;
    }
    EXPECT_EQ(held, "123567");
    EXPECT_FALSE(set.contains(U'z') || CharacterSet().contains(0) ||
                 CharacterSet({{0, 0xFFFFFFFF}}).inverted().contains(0));
    EXPECT_TRUE(CharacterSet().inverted().contains(0x10FFFF));
}

TEST(String, LosesOrReplacesTheCharactersOfASet) {
    const CharacterSet set = CharacterSet::withCharactersInString("\u00E9\u00C3\xE9x");
    EXPECT_EQ(stringByDeletingCharactersInSet("x\u00E9a\u00E8\xE9", set), "a\u00E8\xE9");
    EXPECT_EQ(_stringByDeletingCharactersInSet("xyx", set), "y");
    EXPECT_EQ(stringByReplacingCharactersInSet("xx\u00E9", set, "x-"), "x-x-x-");
    EXPECT_EQ(stringByReplacingCharactersInSet("", set, "x"), "");
    EXPECT_EQ(stringByDeletingCharactersInSet("Take 12", CharacterSet({{U'0', U'9'}}).inverted()),
              "12");
}

TEST(String, ComesFromFormatsAndSystemTexts) {
    const char* const before = std::setlocale(LC_NUMERIC, nullptr);
    for (const char* locale : {before, "de_DE.UTF-8"}) {
        if (std::setlocale(LC_NUMERIC, locale) == nullptr) continue;
        EXPECT_EQ(stringWithCStringFormat("%s %d %.1f", "a", -7, 1.5), "a -7 1.5");
    }
    std::setlocale(LC_NUMERIC, before);
    EXPECT_EQ(stringWithCStringFormat("%*d", 1000, 7)->size(), 1000U);
    EXPECT_EQ(stringWithCStringFormat("%255d|", 7)->back(), '|');
    const char* const none = nullptr;
    EXPECT_FALSE(stringWithCStringFormat(none) || stringWithFileSystemRepresentationWithPath(none));
    EXPECT_EQ(stringWithFileSystemRepresentationWithPath("/a/\xE9"), "/a/\xE9");
}

TEST(String, GoesToMacRomanAndBack) {
    const bool hasMacRoman = TextServices::current().fromLegacy("a").has_value();
    EXPECT_EQ(macRomanString("\u00E9\u65E5\U0001F600z"),
              hasMacRoman ? std::optional<std::string>("\x8E??z") : std::nullopt);
    EXPECT_EQ(stringWithMacRomanString("\x8Ez\xF0"),
              hasMacRoman ? std::optional<std::string>("\u00E9z\uF8FF") : std::nullopt);
    EXPECT_EQ(stringWithMacRomanString(nullptr), std::nullopt);
    EXPECT_EQ(macRomanString("\xE9"), std::nullopt);
}

}  // namespace
}  // namespace veltra
