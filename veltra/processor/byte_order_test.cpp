// SPDX-License-Identifier: MIT
#include "veltra/processor/byte_order.h"

#include "veltra/base/testing/prelude.h"

namespace veltra {
namespace {

TEST(ByteOrder, EachFormReversesItsGroupsAndNothingElse) {
    const struct {
        const char* expected;  // of "abcdefghijklmnopqrs" at an odd address
        void (*swap)(char* at);
    } rows[] = {
        {"hgfedcbaponmlkjiqrs", [](char* at) { PSwapLongLong(at, 2); }},
        {"dcbahgfelkjimnopqrs", [](char* at) { PSwapLong(at, 3); }},
        {"badcfeghijklmnopqrs", [](char* at) { PSwapWord(at, 3); }},
        {"4321876590-+mnopqrs", [](char* at) { PSwapCopyLong(at, "12345678+-09", 3); }},
        {"dcbaefghijklmnopqrs", [](char* at) { SwapInt32(at); }},
        {"dcbaefghijklmnopqrs", [](char* at) { SwapLong(at); }},
        {"dcbahgfelkjimnopqrs", [](char* at) { EXPECT_TRUE(ProcessSwapIntel(at, 3, 1, 32)); }},
        {"cbafedihgjklmnopqrs", [](char* at) { EXPECT_TRUE(ProcessSwapIntel(at, 3, 1, 24)); }},
        {"badcefghijklmnopqrs", [](char* at) { EXPECT_TRUE(ProcessSwapIntel(at, 2, 1, -9)); }},
        {"\xE1\xE2\143defghijklmnopqrs", [](char* at) { ProcessSwapIntel(at, 2, 1, 8); }},
        {"abcdefghijklmnopqrs", [](char* at) { PSwapLongLong(at, 0x80000001U); }},
        {"abcdefghijklmnopqrs", [](char* at) { PSwapLong(at, 0x80000001U); }},
        {"abcdefghijklmnopqrs", [](char* at) { PSwapWord(at, 0xFFFFFFFFU); }},
        {"abcdefghijklmnopqrs", [](char* at) { PSwapCopyLong(at, "1234", 0x80000001U); }},
        {"abcdefghijklmnopqrs", [](char* at) { PSwapCopyLong(at, nullptr, 1); }},
        {"abcdefghijklmnopqrs", [](char*) { ProcessSwapIntel(nullptr, 1, 1, 8); }}};
    for (const auto& row : rows) {
        std::string text = "-abcdefghijklmnopqrs";
        row.swap(text.data() + 1);
        EXPECT_EQ(text, std::string("-") + row.expected) << "row " << &row - rows;
    }
}

}  // namespace
}  // namespace veltra
