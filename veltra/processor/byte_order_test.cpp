#include "veltra/processor/byte_order.h"

#include <string>

#include <gtest/gtest.h>

namespace veltra {
namespace {

using Swap = void (*)(void*, std::uint32_t);

void processInBits(void* buffer, std::uint32_t count, std::int32_t bits) {
    EXPECT_TRUE(ProcessSwapIntel(buffer, count, 7, bits));
}

const struct {
    const char* name;
    Swap swap;
    std::uint32_t count;
    const char* expected;  // of "abcdefghijklmnopqrs", one byte off any alignment
} kRows[] = {
    {"PSwapLongLong", PSwapLongLong, 2, "hgfedcbaponmlkjiqrs"},
    {"PSwapLong", PSwapLong, 3, "dcbahgfelkjimnopqrs"},
    {"PSwapWord", PSwapWord, 3, "badcfeghijklmnopqrs"},
    {"SwapInt32", [](void* at, std::uint32_t) { SwapInt32(at); }, 1, "dcbaefghijklmnopqrs"},
    {"SwapLong", [](void* at, std::uint32_t) { SwapLong(at); }, 1, "dcbaefghijklmnopqrs"},
    {"PSwapCopyLong onto itself",
     [](void* at, std::uint32_t count) { PSwapCopyLong(at, at, count); }, 2, "dcbahgfeijklmnopqrs"},
    {"32 bits", [](void* at, std::uint32_t count) { processInBits(at, count, 32); }, 3,
     "dcbahgfelkjimnopqrs"},
    {"24 bits", [](void* at, std::uint32_t count) { processInBits(at, count, 24); }, 3,
     "cbafedihgjklmnopqrs"},
    {"16 bits", [](void* at, std::uint32_t count) { processInBits(at, count, 16); }, 3,
     "badcfeghijklmnopqrs"},
    {"any bits", [](void* at, std::uint32_t count) { processInBits(at, count, -1); }, 2,
     "badcefghijklmnopqrs"},
    {"8 bits", [](void* at, std::uint32_t count) { processInBits(at, count, 8); }, 3,
     "\xE1\xE2\xE3"
     "defghijklmnopqrs"},
};

TEST(ByteOrder, EachFormReversesItsGroupsAndNothingElseAndTwiceIsTheOriginal) {
    for (const auto& row : kRows) {
        std::string text = "-abcdefghijklmnopqrs";
        const std::string original = text;
        row.swap(text.data() + 1, row.count);
        EXPECT_EQ(text, std::string("-") + row.expected) << row.name;
        row.swap(text.data() + 1, row.count);
        EXPECT_EQ(text, original) << row.name;
        row.swap(nullptr, row.count);
    }
}

TEST(ByteOrder, CopyingLeavesTheSourceAndWritesOnlyItsGroups) {
    const std::string source = "abcdefghij";
    std::string destination(10, '.');
    PSwapCopyLong(destination.data() + 1, source.data() + 1, 2);
    EXPECT_EQ(destination, ".edcbihgf.");
    EXPECT_EQ(source, "abcdefghij");
}

TEST(ByteOrder, CountsThatAreNegativeAsSignedNumbersDoNothing) {
    for (const std::uint32_t count : {0U, 0x80000001U, 0xFFFFFFFFU}) {
        std::string text = "abcdefgh";
        for (const Swap swap : {PSwapLongLong, PSwapLong, PSwapWord}) {
            swap(text.data(), count);
        }
        PSwapCopyLong(text.data(), "12345678", count);
        EXPECT_EQ(text, "abcdefgh") << count;
    }
}

}  // namespace
}  // namespace veltra
