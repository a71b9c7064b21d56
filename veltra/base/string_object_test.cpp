// SPDX-License-Identifier: MIT
#include "veltra/base/string_object.h"

#include "veltra/base/string_object_text.h"
#include "veltra/base/testing/prelude.h"

namespace veltra {
namespace {

using namespace std::string_view_literals;

TEST(StringObject, EveryCharacterSurvivesTheRoundTripAndNoSurrogateGetsIn) {
    for (std::uint32_t character = 0; character <= 0x110000; ++character) {
        const int tail = (character >= 0x80) + (character >= 0x800) + (character >= 0x10000);
        constexpr std::uint32_t kMarks[] = {0, 0xC0, 0xE0, 0xF0};
        std::string utf8(1, static_cast<char>(kMarks[tail] | character >> 6 * tail));
        for (int left = tail; left-- > 0;)
            utf8 += static_cast<char>(0x80 | (character >> 6 * left & 63));
        const VLString* string = VLStringCreateWithUtf8(utf8.data(), utf8.size());
        if ((character >= 0xD800 && character < 0xE000) || character > 0x10FFFF) {
            const auto unit = static_cast<std::uint16_t>(character < 0x10000 ? character : 0xDFFF);
            ASSERT_EQ(string, nullptr) << character;
            ASSERT_EQ(VLStringCreateWithUtf16(&unit, 1), nullptr) << character;
            continue;
        }
        ASSERT_NE(string, nullptr) << character;
        std::array<std::uint16_t, 3> units{};
        const std::size_t count = VLStringCopyUtf16(string, units.data(), units.size());
        ASSERT_EQ(count, character < 0x10000 ? 1U : 2U);
        const VLString* again = VLStringCreateWithUtf16(units.data(), count);
        ASSERT_EQ(textOf(again), utf8) << character;
        VLStringRelease(again);
        VLStringRelease(string);
    }
}

TEST(StringObject, IllFormedInputMakesNoObject) {
    for (const std::string_view bytes :
         {"\x80"sv, "\xC0\x80"sv, "\xC1\xBF"sv, "\xC3"sv, "\xC3("sv, "\xE0\x9F\xBF"sv, "\xE2\x82"sv,
          "\xF0\x8F\xBF\xBF"sv, "\xF8\x88\x80\x80\x80"sv, "ok\xFF"sv, "\xF0\x9F\x8E"sv})
        EXPECT_EQ(VLStringCreateWithUtf8(bytes.data(), bytes.size()), nullptr);
    const std::array<std::uint16_t, 2> reversedPair{0xDC00, 0xD800};
    EXPECT_EQ(VLStringCreateWithUtf16(reversedPair.data(), 2), nullptr);
    std::array<std::uint16_t, 2> units{7, 7};
    EXPECT_FALSE(VLStringCreateWithUtf8(nullptr, 1) || VLStringCreateWithCString(nullptr) ||
                 VLStringCreateWithUtf16(nullptr, 1) || VLStringCopyUtf8(nullptr, nullptr, 1) ||
                 VLStringCopyUtf16(nullptr, units.data(), 2) || units[0] != 7);
    const VLString* const empty = VLStringCreateWithUtf16(nullptr, 0);
    EXPECT_EQ(textOf(empty), "");
    EXPECT_EQ(VLStringCopyUtf16(empty, nullptr, 1) + VLStringLength(nullptr), 0U);
    VLStringRelease(empty);
}

TEST(StringObject, ACopyIsCutBetweenCharactersAndSaysWhatItNeeds) {
    const std::string text = "a\xC3\xA9\xF0\x9F\x8E\xB5z";
    const VLString* string = VLStringCreateWithCString(text.c_str());
    EXPECT_EQ(VLStringLength(string), 5U);
    std::size_t capacity = 0;
    for (const std::size_t length : {0U, 0U, 1U, 1U, 3U, 3U, 3U, 3U, 7U, 8U}) {
        std::string buffer(16, '#'), expected = buffer;
        EXPECT_EQ(VLStringCopyUtf8(string, buffer.data(), capacity), 8U);
        if (capacity > 0) expected.replace(0, length + 1, text.substr(0, length) + '\0');
        EXPECT_EQ(buffer, expected) << capacity;
        ++capacity;
    }
    std::array<std::uint16_t, 2> units{7, 7};
    EXPECT_EQ(VLStringCopyUtf16(string, units.data(), 1), 5U);
    EXPECT_EQ(units[1], 7);
    VLStringRelease(string);
}

}  // namespace
}  // namespace veltra
