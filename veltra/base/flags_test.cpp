// SPDX-License-Identifier: MIT
#include "veltra/base/flags.h"

#include "veltra/base/testing/prelude.h"

namespace veltra {
namespace {

enum class Part : std::uint8_t { Low = 1, Middle = 8, High = 0x80 };
enum class Plain : std::uint8_t { One = 1 };

}  // namespace

template <>
inline constexpr bool isFlag<Part> = true;

namespace {

template <typename T>
concept Joins = requires(T flag) {
    flag | flag;
};
static_assert(Joins<Part> && !Joins<Plain>);
static_assert(!std::is_convertible_v<Flags<Part>, Flags<Plain>>);
static_assert(!std::is_convertible_v<Flags<Part>, int> && !std::is_convertible_v<int, Flags<Part>>);

TEST(Flags, AreSets) {
    using Set = Flags<Part>;
    for (unsigned bits = 0; bits < 256; ++bits) {
        const Set set = Set::fromBits(static_cast<std::uint8_t>(bits));
        EXPECT_EQ(set.bits(), bits);
        EXPECT_EQ(set.isEmpty(), bits == 0);
        EXPECT_EQ(~~set, set);
        EXPECT_TRUE((set & ~set).isEmpty() && set.contains(Set()) && set.contains(set));
        for (const Part part : {Part::Low, Part::Middle, Part::High}) {
            const bool isIn = (bits & static_cast<unsigned>(part)) != 0;
            EXPECT_EQ(set.contains(part), isIn);
            EXPECT_EQ((set | part) == set, isIn);
            EXPECT_EQ((set & ~Set(part)) == set, !isIn);
            EXPECT_EQ(set.contains(part | Part::Middle), isIn && set.contains(Part::Middle));
        }
    }
    Set set = Part::Low | Part::High;
    set |= Part::Middle;
    set &= ~Set(Part::Low);
    EXPECT_EQ(set.bits(), 0x88);
}

}  // namespace
}  // namespace veltra
