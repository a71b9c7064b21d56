// SPDX-License-Identifier: MIT
#include "veltra/processor/utf8_text.h"

#include "veltra/base/testing/prelude.h"
#include "veltra/diagnostics/testing/log_fakes.h"
#include "veltra/platform/testing/environment.h"
#include "veltra/platform/text_services.h"
#include "veltra/processor/testing/guarded_memory.h"
#include "veltra/processor/testing/utf8_laws.h"

#include <gmock/gmock.h>

namespace veltra {
namespace {

using ::testing::ElementsAre;
using ::testing::PrintToString;

// A copy of `text` and its terminator beside a page that nobody may touch.
std::string_view guarded(std::string_view text, Place place) {
    static const GuardedMemory memory;
    auto* const start = reinterpret_cast<char*>(memory.at(place, text.size() + 1));
    start[text.copy(start, text.size())] = '\0';
    return {start, text.size()};
}

TEST(Utf8Text, EveryVariantAgreesWithTheSlowReferenceOnAllShortTexts) {
    constexpr std::string_view kBytes = "a\xA9\xC3\xE2\xF0\xF8\xFC\xFD\xFE\xFF";
    for (unsigned number = 0; number < 11U * 11 * 11 * 11; ++number) {
        std::string text;
        for (unsigned rest = number; rest > 0; rest /= 11)
            if (rest % 11 > 0) text += kBytes[rest % 11 - 1];
        ASSERT_EQ(brokenLaw(guarded(text, Place::End)), "") << PrintToString(text);
    }
}

TEST(Utf8Text, EveryVariantAgreesOnLongTextsAndReadsNoOtherPage) {
    constexpr std::string_view kCharacters[] = {"\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x8E\xB5"};
    constexpr std::string_view kFaults = "\x80\xC3\xE2\xF0\xF9\xFDq";
    std::mt19937 random(1);
    int valid = 0;
    for (std::size_t round = 0; round < 1500; ++round) {
        std::string text;
        for (const std::size_t size = 1 + random() % 700; text.size() < size;)
            text.append(random() % (round % 3 == 0 ? 300 : 4), 'a') += kCharacters[random() % 3];
        for (std::size_t faults = round % 2 * (random() % 3); faults > 0; --faults)
            text[random() % text.size()] = kFaults[random() % kFaults.size()];
        if (round % 5 == 0) text.append(random() % 600, 'z');  // the end among plain text
        valid += slowCheck(text) ? 1 : 0;
        ASSERT_EQ(brokenLaw(guarded(text, Place::Start)), "") << PrintToString(text);
        ASSERT_EQ(brokenLaw(guarded(text, Place::End)), "") << PrintToString(text);
    }
    EXPECT_THAT(valid, ::testing::AllOf(::testing::Gt(500), ::testing::Lt(1400)));
}

TEST(Utf8Text, TextsLongerThanThePiecesOfACopyAreCopiedWhole) {
    for (const std::size_t size : {16'383U, 16'384U, 16'385U, 32'769U, 49'000U}) {
        std::string text;
        for (std::size_t number = 0; text.size() < size; ++number)
            text += std::to_string(number) += "\xE2\x82\xAC";
        ASSERT_EQ(brokenLaw(guarded(text, Place::End)), "") << size;
    }
}

TEST(Utf8Text, AFileNameIsWrittenWholeOrNotAtAll) {
    const std::tuple<const char*, std::size_t, int, const char*> rows[] = {
        {"caf\xC3\xA9", 6, 1, "caf\xC3\xA9"},
        {"caf\xC3\xA9", 5, 0, ""},
        {"", 1, 1, ""},
        {"a\xC3", 6, 0, ""},
        {"\xED\xA0\x80", 6, 0, ""},
        {"a", 0, 0, "######"}};
    for (const auto& [source, capacity, result, expected] : rows) {
        char name[] = "######";
        EXPECT_EQ(utf8_to_fileSystemRepresentation(name, source, capacity), result);
        EXPECT_STREQ(name, expected) << source;
    }
}

TEST(Utf8Text, NullAndNoRoomHaveNeutralAnswers) {
    char byte = '#';
    EXPECT_EQ(utf8_strlen(nullptr), 0U);
    EXPECT_EQ(utf8_check(nullptr) + utf8_is_ascii(nullptr, 0) + utf8_verify(), 0);
    const VLString* lost = nullptr;
    EXPECT_FALSE(utf8_strncpy(nullptr, "a", 1) || utf8_strlcpy(nullptr, "a", 1) ||
                 utf8_to_fileSystemRepresentation(nullptr, "a", 1) ||
                 utf8_to_fsspecFileSystemCString(nullptr, "a", 1, &lost) ||
                 utf8_to_fsspecFileSystemPascalString(nullptr, "a", 1, &lost) || lost);
    utf8_from_cfstring(nullptr, nullptr, 1);
    utf8_from_cfstring(&byte, nullptr, 0);
    EXPECT_EQ(*utf8_strlcpy(&byte, "a", 0), '#');
    EXPECT_EQ(utf8_to_cfstring(""), nullptr);
    EXPECT_EQ(utf8_to_nsstring("\xED\xA0\x80"), nullptr);
    EXPECT_EQ(*utf8_strncpy(&byte, nullptr, 1) + utf8_to_fileSystemRepresentation(&byte, "a", 1),
              0);
}

TEST(Utf8Text, AStringObjectIsCutByUnitsAndThenByWholeCharacters) {
    const std::string e = "\u00E9", note = "\U0001F3B5";
    for (const std::string& text : {e + note, e + e + note, note + note, "a" + note + e})
        ASSERT_EQ(brokenLaw(text), "") << PrintToString(text);
    char buffer[4];
    const VLString* string = utf8_to_nsstring(("ab" + note).c_str());
    utf8_from_nsstring(buffer, string, sizeof buffer);
    VLStringRelease(string);
    EXPECT_STREQ(buffer, "ab?");
}

TEST(Utf8Text, TheLogGetsTheTextAsItStandsOrTheComplaint) {
    LogWorld world;
    setEnvironment("VELTRA_TRACE_WITHOUT_BANNER", "");
    for (const char* text : {"", "100%% caf\xC3\xA9 %@", "\xFF"})
        utf8_log(text);
    for (const char* text : {"", "\xC0\x80", "caf\xC3\xA9"})
        utf8_trace(text);
    setEnvironment("VELTRA_TRACE_WITHOUT_BANNER", nullptr);
    EXPECT_THAT(world.lines, ElementsAre("100%% caf\xC3\xA9 %@\n", "utf8_log: malformed string\n",
                                         "utf8_trace: malformed string\n",
                                         "text of 5 bytes: caf\xC3\xA9\n", "caf\xC3\xA9\n"));
    EXPECT_EQ(world.records.size(), 4U);
}

TEST(Utf8Text, TheLegacyEncodingSubstitutesCutsAndTellsWhatWasLost) {
    const TextServices& services = TextServices::current();
    if (!services.fromLegacy("a")) GTEST_SKIP() << "no legacy converter";
    const std::tuple<const char*, std::size_t, std::string_view, std::string_view> rows[] = {
        {"caf\xC3\xA9 \xE2\x82\xAC", 9, "caf\x8E \xDB", ""},
        {"\xCE\xA9\xE4\xB8\x80\xF0\x9F\x8E\xB5!", 9, "\xBD__!", "\xCE\xA9__!"},
        {"caf\xC3\xA9", 4, "caf", "caf"},
        {"\xC3", 9, "", ""},
        {"a", 0, "", ""}};
    for (const auto& [source, capacity, expected, expectedLost] : rows) {
        std::vector<char> text(capacity + 1, '#'), pascal = text, lostText(8);
        const VLString* const before = utf8_to_cfstring("before");
        const VLString* lost = before;
        utf8_to_fsspecFileSystemCString(text.data(), source, capacity, &lost);
        EXPECT_EQ(lost == before, capacity == 0);
        if (lost == before) lost = nullptr;
        VLStringRelease(before);
        utf8_from_cfstring(lostText.data(), lost, lostText.size());
        EXPECT_EQ(text.data(), expected);
        EXPECT_EQ(lostText.data(), expectedLost) << source;
        VLStringRelease(lost);
        utf8_to_fsspecFileSystemPascalString(pascal.data(), source, capacity, nullptr);
        const auto length = static_cast<std::size_t>(pascal[0]);
        EXPECT_EQ(std::string_view(pascal.data() + 1, length), expected);
    }
    std::string longName(300, '#');
    utf8_to_fsspecFileSystemPascalString(longName.data(), std::string(300, 'x').c_str(), 300,
                                         nullptr);
    EXPECT_EQ(longName.substr(0, 255), '\xFE' + std::string(254, 'x'));
    std::string bytes(256, '\0'), again(300, '#');
    std::generate(bytes.begin(), bytes.end(),
                  [next = 0]() mutable { return static_cast<char>(next++); });
    EXPECT_EQ(services.toLegacy(services.fromLegacy(bytes).value(), '_', again), 256U);
    EXPECT_EQ(again.substr(0, 256), bytes);
}

}  // namespace
}  // namespace veltra
