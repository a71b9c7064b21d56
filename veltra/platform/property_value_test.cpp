#include "veltra/platform/property_value.h"

#include <cstdint>
#include <limits>

#include <gtest/gtest.h>

namespace veltra {
namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr std::int64_t kLargest = std::numeric_limits<std::int64_t>::max();

TEST(PropertyValue, ConvertsBetweenNumbersAndTheirSpellings) {
    struct Row {
        PropertyValue value;
        bool truth;            // fallback: true
        std::int64_t integer;  // fallback: -7
        double real;           // fallback: -7.5
    };
    const Row rows[] = {
        {nullptr, true, -7, -7.5},
        {false, false, 0, 0.0},
        {true, true, 1, 1.0},
        {0, false, 0, 0.0},
        {kLargest, true, kLargest, 9223372036854775808.0},
        {std::uint64_t{1} << 63U, true, -7, 9223372036854775808.0},
        {-9223372036854775808.0, true, -kLargest - 1, -9223372036854775808.0},
        {-2.9F, true, -2, static_cast<double>(-2.9F)},
        {0.0, false, 0, 0.0},
        {kNan, true, -7, kNan},
        {" +12\n", true, 12, 12.0},
        {"-12", true, -12, -12.0},
        {"+-12", true, -7, -7.5},
        {"1.5e1", true, -7, 15.0},
        {"9223372036854775808", true, -7, 9223372036854775808.0},
        {"1e999", true, -7, -7.5},
        {"inf", true, -7, -7.5},
        {"12 MB", true, -7, -7.5},
        {" ", true, -7, -7.5},
        {"No", false, -7, -7.5},
        {"FALSE", false, -7, -7.5},
        {"0", false, 0, 0.0},
        {PropertyValue::Data{1}, true, -7, -7.5},
        {PropertyValue::Array{1}, true, -7, -7.5},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(&row - rows);
        EXPECT_EQ(row.value.asBool(true), row.truth);
        EXPECT_EQ(row.value.asInteger(-7), row.integer);
        EXPECT_EQ(PropertyValue(row.value.asReal(-7.5)), PropertyValue(row.real));
    }
    EXPECT_TRUE(PropertyValue("yes").asBool());
    EXPECT_TRUE(PropertyValue("1").asBool());
    EXPECT_FALSE(PropertyValue("2").asBool());
}

TEST(PropertyValue, CopiesShareMovesLeaveNullAndKindsAreUnequal) {
    PropertyValue text = "text";
    const PropertyValue copy = text;
    EXPECT_EQ(copy.asString().data(), text.asString().data());
    const PropertyValue moved = std::move(text);
    EXPECT_TRUE(
        text.isNull());  // NOLINT(bugprone-*,clang-analyzer-*): the moved-from state is tested
    EXPECT_EQ(moved, copy);

    const PropertyValue values[] = {nullptr,
                                    false,
                                    0,
                                    0.0,
                                    "",
                                    PropertyValue::Data{},
                                    PropertyValue::Array{},
                                    PropertyValue::Dictionary{}};
    for (std::size_t left = 0; left < std::size(values); ++left) {
        EXPECT_EQ(static_cast<std::size_t>(values[left].kind()), left);
        for (std::size_t right = 0; right < std::size(values); ++right) {
            EXPECT_EQ(values[left] == values[right], left == right);
        }
        EXPECT_TRUE(values[left].asString().empty() && values[left].asData().empty());
        EXPECT_TRUE(values[left].asArray().empty() && values[left]["key"].isNull());
    }
    EXPECT_EQ(values[2].asString("none"), "none");
}

TEST(PropertyValue, PathsLeadToMembersAndSetThem) {
    const PropertyValue empty;
    const PropertyValue value = empty.settingValueAtPath({"group", "key"}, 1)
                                    .settingValueAtPath({"group", "other"}, 2)
                                    .settingValueAtPath({"list"}, PropertyValue::Array{3});
    EXPECT_EQ(value.valueAtPath({"group", "key"}), 1);
    EXPECT_EQ(value["group"]["other"], 2);
    EXPECT_TRUE(value.valueAtPath({"group", "key", "deeper"}).isNull());
    EXPECT_EQ(value.settingValueAtPath({"list", "key"}, 4)["list"]["key"], 4);
    EXPECT_EQ(value.settingValueAtPath({"group", "key"}, nullptr)["group"],
              (PropertyValue::Dictionary{{"other", 2}}));
    EXPECT_EQ(value.settingValueAtPath({"new", "key"}, nullptr), value);
}

TEST(PropertyValue, IsNeverDeeperThanItsLimit) {
    PropertyValue value;
    for (std::uint32_t depth = 1; depth <= PropertyValue::kMaximumDepth; ++depth) {
        value = depth % 2 == 0 ? PropertyValue(PropertyValue::Array{1, value})
                               : PropertyValue(PropertyValue::Dictionary{{"", value}});
        ASSERT_EQ(value.depth(), depth);
    }
    EXPECT_TRUE(PropertyValue(PropertyValue::Array{value}).isNull());
    EXPECT_TRUE(PropertyValue(PropertyValue::Dictionary{{"", value}}).isNull());
}

TEST(PropertyValue, HoldsOnlyWellFormedText) {
    const std::pair<const char*, const char*> rows[] = {
        {"a\xC3\xA4\xE2\x82\xAC\xF0\x9D\x84\x9E", "a\xC3\xA4\xE2\x82\xAC\xF0\x9D\x84\x9E"},
        {"\x80z", "\uFFFDz"},
        {"\xC0\xAF", "\uFFFD\uFFFD"},
        {"\xE0\x9F\xBF", "\uFFFD\uFFFD\uFFFD"},
        {"\xED\xA0\x80", "\uFFFD\uFFFD\uFFFD"},
        {"\xF0\x9D\x84", "\uFFFD"},
        {"\xE2\x82z", "\uFFFDz"},
        {"\xF4\x90\x80\x80", "\uFFFD\uFFFD\uFFFD\uFFFD"},
        {"\xF5\xFF", "\uFFFD\uFFFD"},
    };
    for (const auto& [text, repaired] : rows) {
        EXPECT_EQ(PropertyValue(text), PropertyValue(repaired));
    }
    const PropertyValue clash = PropertyValue::Dictionary{{"\x80", 1}, {"\xFF", 2}, {"k", 3}};
    EXPECT_EQ(clash, (PropertyValue::Dictionary{{"\uFFFD", 2}, {"k", 3}}));
}

}  // namespace
}  // namespace veltra
