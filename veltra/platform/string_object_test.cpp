#include "veltra/platform/string_object.h"

#include "veltra/platform/detail/string_object_text.h"

#include <array>
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace veltra {
namespace {

using namespace std::string_view_literals;

// Every character, and every surrogate alone, through both encodings and back.
TEST(StringObject, EveryCharacterSurvivesTheRoundTripAndNoSurrogateGetsIn) {
    for (std::uint32_t character = 0; character <= 0x110000; ++character) {
        std::string utf8;
        const auto put = [&utf8](std::uint32_t byte) { utf8 += static_cast<char>(byte); };
        if (character < 0x80) {
            put(character);
        } else if (character < 0x800) {
            put(0xC0 | character >> 6), put(0x80 | (character & 63));
        } else if (character < 0x10000) {
            put(0xE0 | character >> 12), put(0x80 | (character >> 6 & 63));
            put(0x80 | (character & 63));
        } else {
            put(0xF0 | character >> 18), put(0x80 | (character >> 12 & 63));
            put(0x80 | (character >> 6 & 63)), put(0x80 | (character & 63));
        }
        const VLString* string = VLStringCreateWithUtf8(utf8.data(), utf8.size());
        if ((character >= 0xD800 && character < 0xE000) || character > 0x10FFFF) {
            ASSERT_EQ(string, nullptr) << character;
            const auto unit = static_cast<std::uint16_t>(character);
            if (character < 0x10000) {
                ASSERT_EQ(VLStringCreateWithUtf16(&unit, 1), nullptr) << character;
            }
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
          "\xED\xA0\x80"sv, "\xF0\x8F\xBF\xBF"sv, "\xF4\x90\x80\x80"sv, "\xF8\x88\x80\x80\x80"sv,
          "ok\xFF"sv, "\xF0\x9F\x8E"sv})
        EXPECT_EQ(VLStringCreateWithUtf8(bytes.data(), bytes.size()), nullptr);
    const std::array<std::uint16_t, 2> reversedPair{0xDC00, 0xD800};
    EXPECT_EQ(VLStringCreateWithUtf16(reversedPair.data(), 2), nullptr);
    EXPECT_EQ(VLStringCreateWithUtf8(nullptr, 1), nullptr);
    EXPECT_EQ(VLStringCreateWithCString(nullptr), nullptr);
}

TEST(StringObject, ACopyIsCutBetweenCharactersAndSaysWhatItNeeds) {
    const VLString* string = VLStringCreateWithCString("a\xC3\xA9\xF0\x9F\x8E\xB5z");
    ASSERT_NE(string, nullptr);
    EXPECT_EQ(VLStringLength(string), 5U);
    const std::vector<std::string> whole{"",
                                         "",
                                         "a",
                                         "a",
                                         "a\xC3\xA9",
                                         "a\xC3\xA9",
                                         "a\xC3\xA9",
                                         "a\xC3\xA9",
                                         "a\xC3\xA9\xF0\x9F\x8E\xB5",
                                         "a\xC3\xA9\xF0\x9F\x8E\xB5z"};
    for (std::size_t capacity = 0; capacity < whole.size(); ++capacity) {
        std::string buffer(16, '#');
        EXPECT_EQ(VLStringCopyUtf8(string, buffer.data(), capacity), 8U);
        const std::string untouched(capacity == 0 ? 16 : 15 - whole[capacity].size(), '#');
        EXPECT_EQ(buffer, capacity == 0 ? untouched : whole[capacity] + '\0' + untouched);
    }
    std::array<std::uint16_t, 2> units{7, 7};
    EXPECT_EQ(VLStringCopyUtf16(string, units.data(), 1), 5U);
    EXPECT_EQ(units[1], 7);
    VLStringRelease(string);
}

TEST(StringObject, NullAndEmptyAreEmptyAndReferencesAreCounted) {
    EXPECT_EQ(VLStringLength(nullptr), 0U);
    EXPECT_EQ(VLStringCopyUtf8(nullptr, nullptr, 0), 0U);
    EXPECT_EQ(VLStringRetain(nullptr), nullptr);
    VLStringRelease(nullptr);

    const VLString* empty = VLStringCreateWithUtf8(nullptr, 0);
    ASSERT_NE(empty, nullptr);
    EXPECT_EQ(VLStringRetain(empty), empty);
    VLStringRelease(empty);
    EXPECT_EQ(textOf(empty), "");
    VLStringRelease(empty);

    static const VLString constant = constantString(u"fixed");
    VLStringRelease(&constant);
    VLStringRelease(VLStringRetain(&constant));
    EXPECT_EQ(textOf(&constant), "fixed");
}

}  // namespace
}  // namespace veltra
