// SPDX-License-Identifier: MIT
#include "veltra/processor/kernels/crc_kernels.h"
#include "veltra/processor/kernels/crc_wide.h"

#include <arm_neon.h>

namespace veltra::kernels {

namespace {

// The 16-bit CRC, whose bits come the other way round, is computed mirrored: one instruction
// reverses the bits of each byte, two would reverse the bytes of a block.
struct Pmull {
    using Block = uint64x2_t;

    static Block load(const void* bytes) noexcept {
        return vreinterpretq_u64_u8(vld1q_u8(static_cast<const std::uint8_t*>(bytes)));
    }
    static Block ofWords(std::uint64_t low, std::uint64_t high) noexcept {
        return vcombine_u64(vcreate_u64(low), vcreate_u64(high));
    }
    static Block widened(const std::uint32_t* words) noexcept { return vmovl_u32(vld1_u32(words)); }
    template <class Crc>
    static Block inOrder(Block bytes) noexcept {
        static_assert(detail::kMirrored<Crc>);
        if constexpr (Crc::kDegree == 32) return bytes;
        return vreinterpretq_u64_u8(vrbitq_u8(vreinterpretq_u8_u64(bytes)));
    }
    template <int halves>
    static Block product(Block one, Block other) noexcept {
        constexpr int kFirst = halves & 1;
        constexpr int kSecond = halves >> 4;
        const poly64x2_t first = vreinterpretq_p64_u64(one);
        const poly64x2_t second = vreinterpretq_p64_u64(other);
        if constexpr (kFirst == 1 && kSecond == 1)
            return vreinterpretq_u64_p128(vmull_high_p64(first, second));
        return vreinterpretq_u64_p128(
            vmull_p64(vgetq_lane_p64(first, kFirst), vgetq_lane_p64(second, kSecond)));
    }
    static Block shiftedDown(Block block) noexcept { return vshrq_n_u64(block, 32); }
    template <int place>
    static std::uint32_t word(Block block) noexcept {
        return vgetq_lane_u32(vreinterpretq_u32_u64(block), place);
    }
};

constexpr std::uint32_t exchanged(std::uint32_t state) noexcept {
    return (state & 0xFFU) << 8 | (state >> 8 & 0xFFU);
}

}  // namespace

std::uint32_t crc16Pmull(std::uint32_t previous, const unsigned char* bytes,
                         std::size_t length) noexcept {
    using Crc = detail::MirroredCrc16;
    const std::uint32_t state = update<Crc, OneBlock<Pmull>>(exchanged(previous), bytes, length);
    return exchanged(Pmull::word<0>(Pmull::inOrder<Crc>(Pmull::ofWords(state, 0))));
}

std::uint32_t crc32Pmull(std::uint32_t previous, const unsigned char* bytes,
                         std::size_t length) noexcept {
    return ~update<detail::Crc32, OneBlock<Pmull>>(~previous, bytes, length);
}

}  // namespace veltra::kernels
