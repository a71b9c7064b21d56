// SPDX-License-Identifier: MIT
#include "veltra/controls/number_editor/number_groups.h"

#include "veltra/controls/number_editor/group_text.h"

#include <limits>

#include <gmock/gmock.h>

namespace veltra {
namespace {

using ::testing::ElementsAre;
using Values = std::vector<std::int32_t>;

TEST(NumberGroups, SplitAndJoinAreEachOthersReverse) {
    const NumberGroups position({{0, 1}, {4, 1}, {960, 0}});
    EXPECT_THAT(position.split(4215), ElementsAre(2, 1, 375));
    EXPECT_THAT(position.split(0), ElementsAre(1, 1, 0));
    EXPECT_THAT(position.split(-1), ElementsAre(0, 4, 959));
    for (std::int64_t number = -9000; number < 9000; number += 7)
        ASSERT_EQ(position.join(position.split(number)), number);
    EXPECT_EQ(position.join(Values{1, 5, 0}), position.join(Values{2, 1, 0}));  // carries
    EXPECT_EQ(position.join(Values{2, 1, -1}), position.join(Values{1, 4, 959}));
    EXPECT_EQ(position.join(Values{2}), 3840);  // the lowest beat and tick
    EXPECT_EQ(position.join(Values{1, 1, 0, 99}), 0);
}

TEST(NumberGroups, StayWithinTheirLimits) {
    constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
    constexpr std::int32_t kLarge = std::numeric_limits<std::int32_t>::max();
    const NumberGroups odd({{0, 0}, {0, 0}, {kLarge, 0}});  // a size of 0 counts as 1
    EXPECT_EQ(odd.join(Values{5, 0, 0}), std::int64_t{5} * kLarge);
    EXPECT_THAT(odd.split(kMost), ElementsAre(kLarge, 0, ::testing::_));
    EXPECT_EQ(NumberGroups({{0, 0}, {kLarge, 0}, {kLarge, 0}}).join(Values{kLarge, 0, 0}), kMost);
    EXPECT_THAT(NumberGroups({}).split(7), ElementsAre());
}

TEST(GroupText, ReadsTheWholeNumbersOfAText) {
    const auto groups = [](Values values) { return std::optional<Values>(std::move(values)); };
    EXPECT_EQ(groupsInText("0004.3.0456", 3), groups({4, 3, 456}));
    EXPECT_EQ(groupsInText(" 120 BPM", 2), groups({120, 0}));
    EXPECT_EQ(groupsInText("-12/-5", 2), groups({-12, 5}));
    EXPECT_EQ(groupsInText("\xE2\x88\x92"
                           "3",
                           1),
              groups({-3}));
    EXPECT_EQ(groupsInText("9999999999", 1), groups({std::numeric_limits<std::int32_t>::max()}));
    EXPECT_EQ(groupsInText("-9999999999", 1), groups({std::numeric_limits<std::int32_t>::min()}));
    for (const char* text : {"", "bar", "1 2 3 4"})
        EXPECT_EQ(groupsInText(text, 3), std::nullopt) << text;
}

}  // namespace
}  // namespace veltra
