// SPDX-License-Identifier: MIT
#include "veltra/base/time.h"

#include "veltra/base/testing/prelude.h"

namespace veltra {
namespace {

constexpr std::int64_t kMost = INT64_MAX, kLeast = INT64_MIN;
constexpr double kInfinite = std::numeric_limits<double>::infinity();
constexpr std::int64_t kCounts[] = {kLeast, kLeast + 1, -1'000'000'000'000'000, -7,   -1, 0, 1, 2,
                                    999,    1'000'000,  std::int64_t{1} << 62,  kMost};

// What the compiler calculates with a check of its own: whether it is beyond the range.
using Calculate = bool (*)(std::int64_t a, std::int64_t b, std::int64_t* exact);
constexpr Calculate kSum = [](auto a, auto b, auto* c) { return __builtin_add_overflow(a, b, c); };
constexpr Calculate kLess = [](auto a, auto b, auto* c) { return __builtin_sub_overflow(a, b, c); };
constexpr Calculate kTimes = [](auto a, auto b, auto* c) {
    return __builtin_mul_overflow(a, b, c);
};

// Beyond the range the end on that side.
std::int64_t expected(Calculate calculate, std::int64_t a, std::int64_t b, bool isBelow) {
    std::int64_t exact = 0;
    return !calculate(a, b, &exact) ? exact : isBelow ? kLeast : kMost;
}

TEST(Time, CalculatesExactlyAndStaysAtTheEndsOfTheRange) {
    for (const std::int64_t a : kCounts) {
        const Nanoseconds left(a);
        EXPECT_EQ((-left).count(), expected(kLess, 0, a, false));
        const Nanoseconds shown = milliseconds(left.wholeMilliseconds());
        EXPECT_TRUE(shown >= left && shown - left < milliseconds(1)) << a;
        for (const std::int64_t b : kCounts) {
            const Nanoseconds right(b);
            EXPECT_EQ((left + right).count(), expected(kSum, a, b, a < 0)) << a << ' ' << b;
            EXPECT_EQ((left - right).count(), expected(kLess, a, b, a < 0)) << a << ' ' << b;
            EXPECT_EQ((left * b).count(), expected(kTimes, a, b, (a < 0) != (b < 0)))
                << a << ' ' << b;
            if (b != 0 && !(a == kLeast && b == -1)) {
                EXPECT_EQ(left / right, a / b);
                EXPECT_EQ(left % right, Nanoseconds(a % b));
            }
            EXPECT_EQ(left < right, a < b);
            EXPECT_EQ(Moment(left) - Moment(right), left - right);
            EXPECT_EQ(Moment(left) + right, Moment(left + right));
            EXPECT_EQ(Moment(left) - right, Moment(left - right));
            Nanoseconds changed = left;
            EXPECT_EQ((changed += right, changed -= left), left + right - left);
        }
    }
    EXPECT_EQ(Nanoseconds(kLeast) / Nanoseconds(-1), kMost);
    EXPECT_EQ(Nanoseconds(kLeast) % Nanoseconds(-1), Nanoseconds());
    EXPECT_EQ(seconds(1.0) / Nanoseconds() + (seconds(1.0) % Nanoseconds()).count(), 0);
    EXPECT_EQ(Moment() + Nanoseconds::longest() + milliseconds(1), Moment::never());
}

TEST(Time, SecondsRoundToTheNearestNanosecondAndComeBack) {
    const struct {
        double seconds;
        std::int64_t count;
    } kRows[] = {{0.25, 250'000'000}, {1e-9, 1},       {0.5e-9, 1},         {-0.5e-9, -1},
                 {0.4e-9, 0},         {-0.0, 0},       {std::nan(""), 0},   {1e300, kMost},
                 {kInfinite, kMost},  {-1e10, kLeast}, {-kInfinite, kLeast}};
    for (const auto& row : kRows)
        EXPECT_EQ(seconds(row.seconds).count(), row.count) << row.seconds;
    constexpr std::int64_t kExact[] = {-9'007'199'254'740'991, -1, 0, 3, 33'333'333, 1'000'000'007};
    for (const std::int64_t count : kExact)
        EXPECT_EQ(seconds(Nanoseconds(count).seconds()), Nanoseconds(count)) << count;
    EXPECT_EQ(microseconds(-1500), -seconds(0.0015));
    EXPECT_EQ(2 * milliseconds(kMost), Nanoseconds::longest());
}

}  // namespace
}  // namespace veltra
