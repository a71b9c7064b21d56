// SPDX-License-Identifier: MIT
#include "veltra/processor/checksum.h"

#include "veltra/base/testing/prelude.h"
#include "veltra/processor/detail/checksum_kernels.h"

namespace veltra {
namespace {

// Both CRCs as their definitions have them, a bit at a time.
std::uint32_t crc16BitByBit(std::uint32_t value, const unsigned char* bytes, std::size_t length) {
    for (; length > 0; ++bytes, --length) {
        value ^= static_cast<std::uint32_t>(*bytes << 8);
        for (int bit = 0; bit < 8; ++bit)
            value = (value << 1 ^ ((value & 0x8000U) != 0 ? 0x1021U : 0)) & 0xFFFFU;
    }
    return value;
}

std::uint32_t crc32BitByBit(std::uint32_t value, const unsigned char* bytes, std::size_t length) {
    for (value = ~value; length > 0; ++bytes, --length) {
        value ^= *bytes;
        for (int bit = 0; bit < 8; ++bit)
            value = value >> 1 ^ ((value & 1U) != 0 ? 0xEDB88320U : 0);
    }
    return ~value;
}

struct Family {
    detail::KernelChoice<kernels::CrcKernel>& kernels;
    std::uint32_t (*bitByBit)(std::uint32_t value, const unsigned char* bytes, std::size_t length);
    std::uint32_t mask;
};
const Family kFamilies[] = {{detail::crc16Kernels, crc16BitByBit, 0xFFFF},
                            {detail::crc32Kernels, crc32BitByBit, 0xFFFFFFFF}};

TEST(Checksum, EveryVariantEqualsTheDefinitionAtEveryLengthAlignmentAndSplit) {
    std::mt19937 random(20);
    std::vector<unsigned char> bytes(70'000);
    std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<unsigned char>(random()); });
    for (const Family& family : kFamilies) {
        std::vector<std::pair<std::size_t, std::size_t>> ranges;  // offset, length
        for (std::size_t length = 0; length <= 300; ++length)
            for (std::size_t step = 0; step < 8; ++step)
                ranges.emplace_back((length * 5 + step * 9) % 64, length);
        for (std::size_t length = 301; length <= 2'300; length += 1 + random() % 7)
            ranges.emplace_back(random() % 64, length);
        ranges.insert(ranges.end(), {{3, 65'535}, {0, 65'536}, {64, 69'936}});

        for (const auto& [offset, length] : ranges) {
            const auto before = static_cast<std::uint32_t>(random()) & family.mask;
            const unsigned char* const start = bytes.data() + offset;
            const std::uint32_t expected = family.bitByBit(before, start, length);
            const std::size_t split = random() % (length + 1);
            // At the very end of its own block, where a sanitizer sees a byte read too many.
            const std::vector<unsigned char> alone(start, start + length);
            for (std::size_t i = 0; i < family.kernels.variantCount(); ++i) {
                if (!family.kernels.runs(i)) continue;
                const auto crc = family.kernels.at(i);
                ASSERT_EQ(crc(before, start, length), expected)
                    << family.kernels.variantName(i) << ' ' << offset << ' ' << length;
                ASSERT_EQ(crc(crc(before, start, split), start + split, length - split), expected)
                    << family.kernels.variantName(i) << ' ' << split << " of " << length;
                ASSERT_EQ(crc(before, alone.data(), length), expected);
            }
        }
    }
}

TEST(Checksum, PublishedValuesAndTheAnswersToNothing) {
    EXPECT_EQ(QKCRC16("123456789"), 0xE5CCU);
    EXPECT_TRUE(QKCRC16("") == 0x1D0FU && QKCRC16(nullptr) == 0x1D0FU);
    const std::string longest(65'535, 'v');
    EXPECT_EQ(QKCRC16(longest.c_str()), QKCRC16((longest + '\0' + "more").c_str()));
    EXPECT_EQ(QKCRC16((longest + "v").c_str()), QKCRC16((longest + "v, and more").c_str()));
    EXPECT_NE(QKCRC16(longest.c_str()), QKCRC16((longest + "v").c_str()));

    EXPECT_EQ(QKCRC32(QKCRC32(0, "1234", 4), "56789", 5), 0xCBF43926U);
    EXPECT_EQ(QKCRC32(0x12345678, "", 0), 0x12345678U);
    EXPECT_EQ(QKCRC32(0x12345678, nullptr, 9), 0U);
}

}  // namespace
}  // namespace veltra
