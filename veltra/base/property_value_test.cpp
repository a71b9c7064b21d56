// SPDX-License-Identifier: MIT
#include "veltra/base/property_value.h"

#include "veltra/base/testing/prelude.h"

namespace veltra {
namespace {

using Array = PropertyValue::Array;
using Dictionary = PropertyValue::Dictionary;

TEST(PropertyValue, ConvertsBetweenNumbersAndTheirSpellings) {
    constexpr double kNan = std::numeric_limits<double>::quiet_NaN(), kTwoTo63 = 0x1p63;
    constexpr std::int64_t kLargest = std::numeric_limits<std::int64_t>::max();
    struct Row {
        PropertyValue value;
        bool truth;            // fallback: true
        std::int64_t integer;  // fallback: -7
        double real;           // fallback: -7.5
    };
    const auto check = [](const Row& row) {
        EXPECT_EQ(row.value.asBool(true), row.truth);
        EXPECT_EQ(row.value.asInteger(-7), row.integer);
        EXPECT_EQ(PropertyValue(row.value.asReal(-7.5)), PropertyValue(row.real));
    };
    for (const Row& row :
         {Row{false, false, 0, 0.0}, Row{true, true, 1, 1.0}, Row{0, false, 0, 0.0},
          Row{kLargest, true, kLargest, kTwoTo63}, Row{std::uint64_t{1} << 63U, true, -7, kTwoTo63},
          Row{-kTwoTo63, true, -kLargest - 1, -kTwoTo63}, Row{-2.9, true, -2, -2.9},
          Row{0.0, false, 0, 0.0}, Row{kNan, true, -7, kNan}, Row{" +12\n", true, 12, 12.0},
          Row{"-12", true, -12, -12.0}, Row{"1.5e1", true, -7, 15.0},
          Row{"9223372036854775808", true, -7, kTwoTo63}, Row{"No", false, -7, -7.5},
          Row{"FALSE", false, -7, -7.5}, Row{"0", false, 0, 0.0}})
        check(row);
    for (const PropertyValue& other :
         Array{nullptr, PropertyValue::Data{1}, Array{1}, "+-12", "1e999", "inf", "12 MB", " "})
        check({other, true, -7, -7.5});
    EXPECT_TRUE(PropertyValue("yes").asBool() && PropertyValue("1").asBool());
    EXPECT_FALSE(PropertyValue("2").asBool());
}

TEST(PropertyValue, IsNeverDeeperThanItsLimit) {
    PropertyValue value;
    for (std::uint32_t depth = 1; depth <= PropertyValue::kMaximumDepth; ++depth) {
        value = depth % 2 == 0 ? PropertyValue(Array{1, value})
                               : PropertyValue(Dictionary{{"", value}});
        ASSERT_EQ(value.depth(), depth);
    }
    EXPECT_TRUE(PropertyValue(Array{value}).isNull());
    EXPECT_TRUE(PropertyValue(Dictionary{{"", value}}).isNull());
    const PropertyValue before = Dictionary{{"a", Dictionary{{"b", 1}}}};
    EXPECT_TRUE(before.settingValueAtPath({"a", "c"}, value).isNull());
}

TEST(PropertyValue, IsSetAndTakenAwayAtAPath) {
    using Path = std::vector<std::string_view>;
    const PropertyValue before = Dictionary{{"a", Dictionary{{"b", 1}, {"c", 2}}}, {"d", 3}};
    const std::tuple<Path, PropertyValue, PropertyValue> cases[] = {
        {{}, 7, 7},
        {{"a", "b"}, 7, Dictionary{{"a", Dictionary{{"b", 7}, {"c", 2}}}, {"d", 3}}},
        {{"a", "b"}, nullptr, Dictionary{{"a", Dictionary{{"c", 2}}}, {"d", 3}}},
        {{"a"}, nullptr, Dictionary{{"d", 3}}},
        {{"d", "e"}, 7, Dictionary{{"a", before["a"]}, {"d", Dictionary{{"e", 7}}}}},
        {{"d", "e"}, nullptr, before},
        {Path(200'000, "x"), 7, nullptr}};
    for (const auto& [path, value, after] : cases)
        EXPECT_EQ(before.settingValueAtPath(path, value), after) << &path - &std::get<0>(cases[0]);
}

TEST(PropertyValue, HoldsOnlyWellFormedText) {
    EXPECT_EQ(PropertyValue("\x80z\xE2\x82"), PropertyValue("\uFFFDz\uFFFD"));
    const PropertyValue clash = Dictionary{{"\x80", 1}, {"\xFF", 2}, {"k", 3}};
    EXPECT_EQ(clash, (Dictionary{{"\uFFFD", 2}, {"k", 3}}));
}

}  // namespace
}  // namespace veltra
