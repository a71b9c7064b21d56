// SPDX-License-Identifier: MIT
#include "veltra/base/number_text.h"

#include "veltra/base/testing/prelude.h"

namespace veltra {
namespace {

TEST(NumberText, WritesAsPrintfDoesAndReadsBackTheSame) {
    const double most = std::numeric_limits<double>::max();
    for (const double number : {0.0, -0.0, 0.05, 1.25, -2.5, 99.95, 1e15, 0.1 + 0.2, -most}) {
        for (const int decimals : {-1, 0, 1, 6, 7}) {
            char expected[400];
            std::snprintf(expected, sizeof expected, "%.*f", std::clamp(decimals, 0, 6), number);
            EXPECT_EQ(NumberText::fixed(number, decimals).view(), expected);
        }
        EXPECT_EQ(std::stod(std::string(NumberText::shortest(number).view())), number);
    }
    EXPECT_EQ(NumberText::shortest(0.1F).view(), "0.1");
    EXPECT_EQ(NumberText(INT64_MIN).view(), "-9223372036854775808");
    EXPECT_EQ(NumberText(UINT64_MAX).view(), "18446744073709551615");
    EXPECT_EQ(NumberText::hexadecimal(0xFFFFFFFFU).view(), "ffffffff");
    const NumberText copy = NumberText::hexadecimal(std::uint8_t{0});
    EXPECT_EQ(copy.view(), "0");
}

}  // namespace
}  // namespace veltra
