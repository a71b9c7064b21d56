// SPDX-License-Identifier: MIT
// Registers of 16 bytes to and from memory that need not be aligned; nothing outside the bytes that
// are asked for is touched. Internal linkage: for files that are built for this variant.
#pragma once

#include "veltra/processor/kernels/vector_memory.h"

#include <cstdint>

#include <arm_neon.h>

namespace veltra::kernels {

namespace {

struct NeonMemory {
    using Register = uint8x16_t;
    static constexpr std::size_t kBytes = 16;

    template <std::size_t bytes>
    static Register load(const unsigned char* from) {
        if constexpr (bytes == 4)
            return withWord<0>(vdupq_n_u8(0), from);
        else if constexpr (bytes == 8)
            return vcombine_u8(vld1_u8(from), vdup_n_u8(0));
        else if constexpr (bytes == 12)
            return withWord<2>(load<8>(from), from + 8);
        else
            return vld1q_u8(from);
    }
    template <std::size_t bytes>
    static Register loadFirst(const unsigned char* from, std::size_t count) {
        return loadThroughBlock<NeonMemory, bytes>(from, count);
    }

    template <std::size_t bytes>
    static void store(unsigned char* to, Register value) {
        if constexpr (bytes == 4)
            storeWord<0>(to, value);
        else if constexpr (bytes == 8)
            vst1_u8(to, vget_low_u8(value));
        else if constexpr (bytes == 12) {
            store<8>(to, value);
            storeWord<2>(to + 8, value);
        } else
            vst1q_u8(to, value);
    }
    template <std::size_t bytes>
    static void storeFirst(unsigned char* to, Register value, std::size_t count) {
        storeThroughBlock<NeonMemory, bytes>(to, value, count);
    }

    static Register shuffled(Register bytes, const Places16& places) {
        return vqtbl1q_u8(bytes, vld1q_u8(places.from));
    }

    static Register flipped(Register bytes) { return veorq_u8(bytes, vdupq_n_u8(0x80)); }

private:
    template <int lane>
    static Register withWord(Register bytes, const unsigned char* from) {
        std::uint32_t word = 0;
        __builtin_memcpy(&word, from, sizeof word);
        return vreinterpretq_u8_u32(vsetq_lane_u32(word, vreinterpretq_u32_u8(bytes), lane));
    }
    template <int lane>
    static void storeWord(unsigned char* to, Register value) {
        const std::uint32_t word = vgetq_lane_u32(vreinterpretq_u32_u8(value), lane);
        __builtin_memcpy(to, &word, sizeof word);
    }
};

}  // namespace

}  // namespace veltra::kernels
