// SPDX-License-Identifier: MIT
#include "veltra/controls/keyboard/octave_range.h"

#include "veltra/base/testing/prelude.h"

#include <limits>

namespace veltra {
namespace {

constexpr OctaveRow kLarge{450.0F, 75};
constexpr OctaveRow kOdd{452.0F, 75};  // keys of a broken number of points
constexpr float kFar = std::numeric_limits<float>::infinity();

TEST(OctaveRange, ItsSidesStandInWholePointsOnTheKeys) {
    EXPECT_EQ(kLarge.right({10, 10}), 125.0F);
    EXPECT_EQ(kOdd.left({38, 10}), 235.0F);   // 229.01
    EXPECT_EQ(kOdd.right({10, 10}), 125.0F);  // 119.53
    constexpr std::uint32_t kMost = std::numeric_limits<std::uint32_t>::max();
    EXPECT_EQ(kLarge.kept({66, 10}), (KeyRange{65, 10}));
    EXPECT_EQ(kLarge.kept({kMost, kMost}), (KeyRange{0, 75}));
    EXPECT_EQ(kLarge.kept({kMost, 0}), (KeyRange{74, 1}));
}

TEST(OctaveRange, FollowsThePointerInStepsAndStopsAtBothEnds) {
    const struct {
        float x, offset;
        std::int32_t raster;
        std::uint32_t length, location;
    } rows[] = {{66.0F, 0.0F, 1, 10, 10}, {65.9F, 0.0F, 1, 10, 9},  {71.0F, 6.0F, 1, 10, 9},
                {90.0F, 0.0F, 7, 10, 14}, {89.0F, 0.0F, 7, 10, 7},  {455.0F, 0.0F, 7, 10, 65},
                {455.0F, 0.0F, 7, 3, 70}, {3.0F, 0.0F, 7, 10, 0},   {-500.0F, 0.0F, 1, 10, 0},
                {kFar, 0.0F, 7, 10, 65},  {kFar, 0.0F, 1, 75, 0},   {std::nanf(""), 0.0F, 7, 10, 0},
                {90.0F, 0.0F, 0, 10, 14}, {96.0F, 0.0F, -7, 10, 15}};
    for (const auto& row : rows) {
        EXPECT_EQ(kLarge.moved({30, row.length}, row.x, row.offset, row.raster).location,
                  row.location);
    }
    // What has been grabbed anywhere moves as far as the pointer, key by key.
    for (float offset = 0.0F; offset < 60.0F; offset += 1.0F) {
        for (std::uint32_t key = 0; key < 66; ++key)
            EXPECT_EQ(kLarge.moved({30, 10}, kLarge.left({key, 10}) + offset, offset, 1).location,
                      key);
    }
}

TEST(OctaveRange, ASideGoesToTheNearestBorderAndLeavesAKey) {
    const struct {
        float x;
        std::int32_t raster;
        std::uint32_t left, end;  // of the range when its left or its right side goes to x
    } rows[] = {{38.0F, 1, 5, 11}, {40.0F, 1, 6, 11}, {40.0F, 7, 7, 11},   {400.0F, 1, 19, 66},
                {-9.0F, 1, 0, 11}, {kFar, 7, 19, 75}, {200.0F, 1, 19, 32}, {180.0F, 7, 19, 28}};
    for (const auto& row : rows) {
        EXPECT_EQ(kLarge.withLeftAt({10, 10}, row.x, row.raster),
                  (KeyRange{row.left, 20 - row.left}));
        EXPECT_EQ(kLarge.withRightAt({10, 10}, row.x, row.raster), (KeyRange{10, row.end - 10}));
    }
    EXPECT_EQ(kLarge.withLeftAt({}, 40.0F, 1), (KeyRange{0, 1})) << "of no key";
}

}  // namespace
}  // namespace veltra
