// SPDX-License-Identifier: MIT
#include "veltra/controls/keyboard/octave_range.h"

#include "veltra/base/testing/prelude.h"

#include <limits>

namespace veltra {

static void PrintTo(KeyRange range, std::ostream* out) {
    *out << range.location << '+' << range.length;
}

namespace {

constexpr OctaveRow kLarge{450.0F, 75};
constexpr OctaveRow kOdd{452.0F, 75};  // keys of a broken number of points

TEST(OctaveRange, ItsSidesStandInWholePoints) {
    EXPECT_EQ(kLarge.left({10, 10}), 66.0F);
    EXPECT_EQ(kLarge.right({10, 10}), 125.0F);
    EXPECT_EQ(kOdd.left({10, 10}), 66.0F);
    EXPECT_EQ(kOdd.left({38, 10}), 235.0F);   // 229.01
    EXPECT_EQ(kOdd.right({10, 10}), 125.0F);  // 119.53
    EXPECT_EQ(kOdd.right({65, 10}), 457.0F);
}

TEST(OctaveRange, FollowsThePointerInStepsAndStopsAtBothEnds) {
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    const struct {
        float x, offset;
        std::int32_t raster;
        KeyRange range, moved;
    } rows[] = {
        {66.0F, 0.0F, 1, {0, 10}, {10, 10}},        {65.9F, 0.0F, 1, {0, 10}, {9, 10}},
        {71.9F, 0.0F, 1, {0, 10}, {10, 10}},        {72.0F, 6.0F, 1, {0, 10}, {10, 10}},
        {71.0F, 6.0F, 1, {0, 10}, {9, 10}},         {66.0F, 0.0F, 7, {0, 10}, {7, 10}},
        {90.0F, 0.0F, 7, {0, 10}, {14, 10}},        {89.0F, 0.0F, 7, {0, 10}, {7, 10}},
        {455.0F, 0.0F, 7, {0, 10}, {65, 10}},       {455.0F, 0.0F, 7, {0, 3}, {70, 3}},
        {3.0F, 0.0F, 7, {20, 10}, {0, 10}},         {-500.0F, 0.0F, 1, {20, 10}, {0, 10}},
        {kInfinity, 0.0F, 7, {20, 10}, {65, 10}},   {kInfinity, 0.0F, 1, {0, 75}, {0, 75}},
        {std::nanf(""), 0.0F, 7, {9, 10}, {0, 10}}, {90.0F, 0.0F, 0, {0, 10}, {14, 10}},
        {96.0F, 0.0F, -7, {0, 10}, {15, 10}},       {96.0F, 0.0F, 2, {0, 10}, {14, 10}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(kLarge.moved(row.range, row.x, row.offset, row.raster), row.moved) << row.x;
    // What has been grabbed anywhere moves as far as the pointer, key by key.
    for (float offset = 0.0F; offset < 60.0F; offset += 1.0F) {
        for (std::uint32_t key = 0; key < 66; ++key) {
            const float x = kLarge.left({key, 10}) + offset;
            EXPECT_EQ(kLarge.moved({30, 10}, x, offset, 1), (KeyRange{key, 10}));
        }
    }
}

TEST(OctaveRange, ASideGoesToTheNearestBorderAndLeavesAKey) {
    const KeyRange range{10, 10};
    EXPECT_EQ(kLarge.withLeftAt(range, 38.0F, 1), (KeyRange{5, 15}));
    EXPECT_EQ(kLarge.withLeftAt(range, 40.0F, 1), (KeyRange{6, 14}));
    EXPECT_EQ(kLarge.withLeftAt(range, 400.0F, 1), (KeyRange{19, 1}));
    EXPECT_EQ(kLarge.withLeftAt(range, -9.0F, 1), (KeyRange{0, 20}));
    EXPECT_EQ(kLarge.withLeftAt(range, 40.0F, 7), (KeyRange{7, 13}));
    EXPECT_EQ(kLarge.withRightAt(range, 200.0F, 1), (KeyRange{10, 22}));
    EXPECT_EQ(kLarge.withRightAt(range, 0.0F, 1), (KeyRange{10, 1}));
    EXPECT_EQ(kLarge.withRightAt(range, 1e20F, 7), (KeyRange{10, 65}));
    EXPECT_EQ(kLarge.withRightAt(range, 180.0F, 7), (KeyRange{10, 18}));
}

TEST(OctaveRange, IsKeptOnTheKeys) {
    constexpr std::uint32_t kMost = std::numeric_limits<std::uint32_t>::max();
    EXPECT_EQ(kLarge.kept({10, 10}), (KeyRange{10, 10}));
    EXPECT_EQ(kLarge.kept({66, 10}), (KeyRange{65, 10}));
    EXPECT_EQ(kLarge.kept({kMost, kMost}), (KeyRange{0, 75}));
    EXPECT_EQ(kLarge.kept({kMost, 0}), (KeyRange{74, 1}));
}

}  // namespace
}  // namespace veltra
