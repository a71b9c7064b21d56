// SPDX-License-Identifier: MIT
#include "veltra/processor/kernels/neon_memory.h"
#include "veltra/processor/kernels/sample_vector16.h"

namespace veltra::kernels {

namespace {

struct NeonWords : NeonMemory {
    template <int bytes>
    static Register joined(Register one, Register other) {
        return vextq_u8(one, other, bytes);
    }

    static Register lowPairs(Register one, Register other) {
        return vreinterpretq_u8_u32(vzip1q_u32(words(one), words(other)));
    }
    static Register highPairs(Register one, Register other) {
        return vreinterpretq_u8_u32(vzip2q_u32(words(one), words(other)));
    }

    template <int channels>
    static Register tops(Register one, Register other) {
        const uint16x8_t ones = vreinterpretq_u16_u8(one);
        const uint16x8_t others = vreinterpretq_u16_u8(other);
        return vreinterpretq_u8_u16(channels == 2 ? vtrn2q_u16(ones, others)
                                                  : vuzp2q_u16(ones, others));
    }
    static Register topBytes(Register one, Register other) { return vuzp2q_u8(one, other); }
    static Register withoutLowBytes(Register bytes) {
        return vreinterpretq_u8_u32(vandq_u32(words(bytes), vdupq_n_u32(0xFFFF'FF00U)));
    }

    static void split(Register low, Register high, Register& even, Register& odd) {
        even = vreinterpretq_u8_u32(vuzp1q_u32(words(low), words(high)));
        odd = vreinterpretq_u8_u32(vuzp2q_u32(words(low), words(high)));
    }

    // Of 24 bits, which a float holds: exact in every rounding mode.
    static Register floatsOf(Register bytes) {
        return vreinterpretq_u8_f32(vcvtq_n_f32_s32(vreinterpretq_s32_u8(bytes), 31));
    }

    // Clipped as integers, to which a denormal is like any other, then times 2^31 and truncated in
    // one step. The clipping leaves one step below 1.0; where it did anything and the lowest bytes
    // count, full scale is a step lower still.
    template <std::size_t bytes, std::size_t count>
    [[gnu::always_inline]] static void fractionsOf(Register (&samples)[count]) {
        for (Register& sample : samples) {
            const int32x4_t bits = vreinterpretq_s32_u8(sample);
            const int32x4_t below = vminq_s32(bits, vdupq_n_s32(0x3F7F'FFFF));
            uint32x4_t clipped = vminq_u32(vreinterpretq_u32_s32(below), vdupq_n_u32(0xBF7F'FFFFU));
            if constexpr (bytes > 2)  // -1 where clipping made it less
                clipped = vaddq_u32(clipped, vcgtq_s32(bits, vreinterpretq_s32_u32(clipped)));
            sample = vreinterpretq_u8_s32(vcvtq_n_s32_f32(vreinterpretq_f32_u32(clipped), 31));
        }
    }

private:
    static uint32x4_t words(Register bytes) { return vreinterpretq_u32_u8(bytes); }
};

}  // namespace

constexpr SampleKernels kSamplesNeon = makeSampleKernels<SampleVector16<NeonWords>>();

}  // namespace veltra::kernels
