// SPDX-License-Identifier: MIT
#include "veltra/base/json_text.h"

#include "veltra/base/testing/prelude.h"

namespace veltra {
namespace {

using Array = PropertyValue::Array;
using Data = PropertyValue::Data;
using Dictionary = PropertyValue::Dictionary;

PropertyValue randomValue(std::mt19937& random, std::uint32_t depth) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    constexpr std::int64_t kSmallest = std::numeric_limits<std::int64_t>::min();
    static const Array kLeaves[] = {
        {nullptr, false, true, 0, -5, kSmallest, ~kSmallest, 0.0, -0.0, 5e-324, 1e22, 1.0 / 3.0},
        {kInfinity, -kInfinity, kInfinity * 0.0, "", "nan", "QUI=", "\t/\"\\\x7F\uFFFD\u266B"},
        {std::string(1, '\0'), Data{}, Data{1}, Data{1, 254}, Data{0, 0, 0}, Data(256, 255)}};
    static const char* const kKeys[] = {"", "$", "$data", "$real", "$$data", "$$$real", "\n"};
    const auto below = [&](std::size_t limit) { return random() % limit; };
    const Array& leaves = kLeaves[below(std::size(kLeaves))];
    if (depth == 0 || below(2) == 0) return leaves[below(leaves.size())];
    Array items(below(4));
    for (PropertyValue& item : items)
        item = randomValue(random, depth - 1);
    if (below(3) == 0) return items;
    Dictionary members;
    for (PropertyValue& item : items)
        members[kKeys[below(std::size(kKeys))]] = item;
    return members;
}

TEST(JsonText, EveryDictionaryComesBackAsItWas) {
    std::mt19937 random(1);
    for (int round = 0; round < 3000; ++round) {
        const Dictionary members{{"$data", randomValue(random, 4)}, {"x", randomValue(random, 4)}};
        const std::string text = jsonFromDictionary(members);
        ASSERT_EQ(dictionaryFromJson(text), members) << text;
        ASSERT_EQ(jsonFromDictionary(*dictionaryFromJson(text)), text);  // also the sign of 0
    }
    PropertyValue deepest = Data{1};
    while (deepest.depth() < PropertyValue::kMaximumDepth)
        deepest = Array{deepest};
    EXPECT_EQ(dictionaryFromJson(jsonFromDictionary({{"", deepest}})), (Dictionary{{"", deepest}}));
}

TEST(JsonText, ReadsWhatOthersWriteAndRefusesWhatIsDamaged) {
    EXPECT_EQ(dictionaryFromJson("\xEF\xBB\xBF{\"a\":1,\"a\":2.0}"), (Dictionary{{"a", 2.0}}));
    EXPECT_EQ(dictionaryFromJson(R"({"$data":"QUI="})"), (Dictionary{{"$data", "QUI="}}));
    const std::pair<std::string, PropertyValue> sound[] = {
        {"18446744073709551615", 18446744073709551615.0},
        {R"({"$data":"QUI="})", Data{'A', 'B'}},
        {R"({"$data":"QUI"})", Dictionary{{"$data", "QUI"}}},
        {R"({"$data":"QUJ="})", Dictionary{{"$data", "QUJ="}}},
        {R"({"$data":"Q==="})", Dictionary{{"$data", "Q==="}}},
        {R"({"$data":1})", Dictionary{{"$data", 1}}},
        {R"({"$real":"1"})", Dictionary{{"$real", "1"}}},
        {R"({"b":1,"$real":"inf"})", Dictionary{{"$real", "inf"}, {"b", 1}}}};
    for (const auto& [text, value] : sound)
        EXPECT_EQ(dictionaryFromJson("{\"a\":" + text + '}'), (Dictionary{{"a", value}})) << text;

    const auto nested = [](std::size_t depth) {
        return "{\"a\":" + std::string(depth, '[') + std::string(depth, ']') + '}';
    };
    EXPECT_TRUE(dictionaryFromJson(nested(PropertyValue::kMaximumDepth)));
    std::string objects;
    for (int depth = 0; depth < 10000; ++depth)
        objects += "{\"a\":";
    for (const std::string& damaged :
         {std::string(), std::string("1"), std::string("[]"), std::string("{} x"), objects,
          std::string(R"({"a":1e999})"), std::string("{\"\xFF\":1}"), std::string(R"({"a":NaN})"),
          std::string(R"({"a":"\ud800"})"), std::string(10000, '['), nested(10000),
          nested(PropertyValue::kMaximumDepth + 1)})
        EXPECT_FALSE(dictionaryFromJson(damaged)) << damaged;
}

}  // namespace
}  // namespace veltra
