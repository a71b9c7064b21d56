// SPDX-License-Identifier: MIT
#include "veltra/Source/Extensions/string_compare.h"

#include "veltra/base/testing/in_force.h"
#include "veltra/base/testing/prelude.h"
#include "veltra/platform/none/no_text_services.h"

namespace veltra {

// For the messages of failing tests.
static std::ostream& operator<<(std::ostream& stream, const std::optional<TextRange>& range) {
    if (!range) return stream << "nowhere";
    return stream << range->position << "+" << range->length;
}

namespace {

constexpr CompareOption kCase = CompareOption::CaseInsensitive, kLiteral = CompareOption::Literal,
                        kBackwards = CompareOption::Backwards, kAnchored = CompareOption::Anchored,
                        kNumeric = CompareOption::Numeric;

bool hasForms() {
    return TextServices::current().decomposed(u"a").has_value();
}

template <typename Body>
void withAndWithoutServices(Body body) {
    body();
    const testing::InForce<NoTextServices> services;
    body();
}

TEST(StringCompare, FindsTheWantedPlaceInBytesOfTheText) {
    const struct {
        const char *text, *sought;
        CompareOptions options;
        std::optional<TextRange> range;
        bool needsForms = false;
    } kCases[] = {{"tape tape", "ape", kAnchored, {}},
                  {"tape tape", "ape", kAnchored | kBackwards, {{6, 3}}},
                  {"tape", "tapes", kAnchored | kBackwards, {}},
                  {"tape", "TAPE", {}, {}},
                  {"tape", "", {}, {}},
                  {"", "a", kCase, {}},
                  {"Take 007", "TAKE 7", kCase | kNumeric, {}},
                  {"a tapE", "TaPe", kCase | kLiteral, {{2, 4}}},
                  {"tapE a", "TaPe", kCase | kAnchored, {{0, 4}}},
                  {"tapE a", "TaPe", kCase | kAnchored | kBackwards, {}},
                  {"a\xC3\xA9", "\xC3\xA9", kLiteral, {{1, 2}}},
                  {"a\xC3\xA9", "\xA9", kLiteral, {}},  // a byte is no part of a character
                  {"a\xC3\xA9\xFF", "\xFF", {}, {{3, 1}}},
                  {"a\xE2\x82z", "\x82", {}, {}},
                  {"Cafe\xCC\x81.wav", "CAF\xC3\x89", kCase, {{0, 6}}, true},
                  {"Caf\xC3\xA9.wav", "fe\xCC\x81.", {}, {{2, 4}}, true},
                  {"Cafe\xCC\x81", "e", {}, {}, true},
                  {"Cafe\xCC\x81 e", "e", {}, {{7, 1}}, true},
                  {"Cafe\xCC\x81 e", "e", kLiteral, {{3, 1}}},
                  {"Caf\xC3\xA9", "e\xCC\x81", kLiteral, {}},
                  {"Caf\xC3\xA9", "E\xCC\x81", kLiteral | kCase, {}},
                  {"STRASSE", "stra\u00DFe", kCase, {{0, 7}}, true},
                  {"\xC3\x9F", "s", kCase, {}, true},          // half of a letter's form
                  {"s\xC3\x9F", "ss", kCase, {{1, 2}}, true},  // the first "ss" ends in a letter
                  {"\xC3\x9Fs", "ss", kCase | kBackwards, {{0, 2}}, true},
                  {"\xEA\xB0\x80", "\xE1\x84\x80\xE1\x85\xA1", {}, {{0, 3}}, true},
                  {"\xE1\x84\x80\xE1\x85\xA1", "\xEA\xB0\x80", kBackwards, {{0, 6}}, true}};
    withAndWithoutServices([&] {
        for (const auto& one : kCases) {
            if (one.needsForms && !hasForms()) continue;
            EXPECT_EQ(find(one.text, one.sought, one.options), one.range)
                << one.text << " / " << one.sought;
        }
    });
}

TEST(StringCompare, FindsEachPlaceOfLittleWords) {
    std::mt19937 random(1);
    const auto letters = [&random](std::size_t size) {
        std::string text(size, 'a');
        for (char& letter : text)
            letter = static_cast<char>('a' + random() % 2);
        return text;
    };
    for (int round = 0; round < 20'000; ++round) {
        const std::string text = letters(random() % 24), sought = letters(1 + random() % 6);
        for (const bool isFolded : {false, true}) {
            const CompareOptions options = isFolded ? CompareOptions(kCase) : CompareOptions();
            const auto placeOf = [&](CompareOptions more) {
                const auto range = veltra::find(text, sought, options | more);
                return range ? range->position : std::string::npos;
            };
            ASSERT_EQ(placeOf({}), text.find(sought)) << text << " / " << sought;
            ASSERT_EQ(placeOf(kBackwards), text.rfind(sought)) << text << " / " << sought;
        }
    }
}

// Takes minutes where time grows with the product of the lengths.
TEST(StringCompare, FindsInLongTextsWhoseEveryPlaceResemblesTheWord) {
    constexpr std::size_t kSize = std::size_t{1} << 21;
    const std::string text(kSize, 'a'), sought(kSize / 2, 'a');
    for (const CompareOptions options : {CompareOptions(), CompareOptions(kCase)}) {
        EXPECT_FALSE(veltra::find(text, sought + "b", options) ||
                     veltra::find(text, "b" + sought, options) ||
                     veltra::find(text, sought + "b", options | kBackwards) ||
                     veltra::find(text, "b" + sought, options | kBackwards));
        EXPECT_EQ(veltra::find("b" + text, sought, options), (TextRange{1, sought.size()}));
    }
    if (!hasForms()) return;
    std::string sharp;  // each of these letters is two s: no place is at the edge of one
    for (std::size_t size = 0; size < kSize / 8; ++size)
        sharp += "\u00DF";
    EXPECT_FALSE(veltra::find(sharp, "s" + sharp.substr(sharp.size() / 2), kCase));
}

TEST(StringCompare, EqualIsWhatAReaderTakesForEqual) {
    const struct {
        const char *one, *other;
        CompareOptions options;
        bool isEqual;
        bool needsForms = false;
    } kCases[] = {
        {"", "", {}, true},
        {"a", "A", {}, false},
        {"a", "A", kCase, true},
        {"Take 7", "Take 007", kNumeric, true},
        {"Take 7", "Take 70", kNumeric, false},
        {"Take 0", "Take 000", kNumeric, true},
        {"1.05", "1.5", kNumeric, true},  // two runs
        {"100", "1", kNumeric, false},
        {"take 07B", "Take 7b", kNumeric | kCase | kBackwards | kAnchored, true},
        {"Caf\xC3\xA9", "Cafe\xCC\x81", {}, true, true},
        {"Caf\xC3\xA9", "Cafe\xCC\x81", kLiteral, false},
        {"\xCE\xA3", "\xCF\x82", kCase, true, true},  // final sigma
        {"\xE1\xBE\xB3", "\xCE\x91\xCD\x85", kCase, true, true},
        {"a\xCC\xA3\xCC\x81", "a\xCC\x81\xCC\xA3", {}, true, true},  // order of two accents
        {"\xFF", "\xFF", kCase, true},
        {"\xFF", "\xFE", {}, false},
        {"\xC3", "\xEF\xBF\xBD", {}, false}};
    withAndWithoutServices([&] {
        for (const auto& one : kCases) {
            if (one.needsForms && !hasForms()) continue;
            EXPECT_EQ(equals(one.one, one.other, one.options), one.isEqual) << one.one << one.other;
            EXPECT_EQ(equals(one.other, one.one, one.options), one.isEqual) << one.one << one.other;
        }
    });
}

}  // namespace
}  // namespace veltra
