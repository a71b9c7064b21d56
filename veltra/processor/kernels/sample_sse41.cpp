// SPDX-License-Identifier: MIT
#include "veltra/processor/kernels/float_environment.h"
#include "veltra/processor/kernels/sample_vector16.h"
#include "veltra/processor/kernels/ssse3_memory.h"

namespace veltra::kernels {

namespace {

struct Sse41Words : Ssse3Memory {
    template <int bytes>
    static Register joined(Register one, Register other) {
        return _mm_alignr_epi8(other, one, bytes);
    }

    static Register lowPairs(Register one, Register other) {
        return _mm_unpacklo_epi32(one, other);
    }
    static Register highPairs(Register one, Register other) {
        return _mm_unpackhi_epi32(one, other);
    }

    template <int channels>
    static Register tops(Register one, Register other) {
        const Register inTurns = _mm_blend_epi16(_mm_srli_epi32(one, 16), other, 0xAA);
        if constexpr (channels == 2) return inTurns;
        static constexpr Places16 kOneFirst{{0, 1, 4, 5, 8, 9, 12, 13, 2, 3, 6, 7, 10, 11, 14, 15}};
        return shuffled(inTurns, kOneFirst);
    }
    static Register topBytes(Register one, Register other) {
        return _mm_packs_epi16(_mm_srai_epi16(one, 8), _mm_srai_epi16(other, 8));
    }
    static Register withoutLowBytes(Register words) {
        return _mm_and_si128(words, _mm_set1_epi32(-256));
    }

    static void split(Register low, Register high, Register& even, Register& odd) {
        const __m128 lowWords = _mm_castsi128_ps(low);
        const __m128 highWords = _mm_castsi128_ps(high);
        even = _mm_castps_si128(_mm_shuffle_ps(lowWords, highWords, 0x88));
        odd = _mm_castps_si128(_mm_shuffle_ps(lowWords, highWords, 0xDD));
    }

    static Register floatsOf(Register words) {
        return _mm_castps_si128(_mm_mul_ps(_mm_cvtepi32_ps(words), _mm_set1_ps(0x1p-31F)));
    }

    // Clipped as integers, to which a denormal is like any other, then multiplied by 2^31 in the
    // exponent. The clipping leaves one step below 1.0; where it did anything and the lowest bytes
    // count, full scale is a step lower still.
    template <std::size_t bytes, std::size_t count>
    [[gnu::always_inline]] static void fractionsOf(Register (&samples)[count]) {
        for (Register& sample : samples) {
            const Register clipped =
                _mm_min_epu32(_mm_min_epi32(sample, _mm_set1_epi32(0x3F7F'FFFF)),
                              _mm_set1_epi32(static_cast<int>(0xBF7F'FFFFU)));
            Register scaled = _mm_add_epi32(clipped, _mm_set1_epi32(31 << 23));
            if constexpr (bytes > 2)
                scaled = _mm_add_epi32(scaled, _mm_cmpgt_epi32(sample, clipped));
            sample = _mm_cvttps_epi32(_mm_castsi128_ps(scaled));
        }
    }
};

// With fewer steps, for which the thread's arithmetic is changed for a while. What lies beyond 1.0
// or -1.0, and 1.0 itself, becomes the least integer.
struct Sse41Long : SampleVector16<Sse41Words> {
    using Environment = WatchedArithmetic;

    // In two bytes and less the least integer is right for -1.0, too. All others are told.
    template <std::size_t bytes, std::size_t count>
    [[gnu::always_inline]] static void fractionsOf(Register (&samples)[count]) {
        if constexpr (bytes > 2) return Sse41Words::fractionsOf<bytes>(samples);
        scale(samples);
    }

    // In more bytes -1.0 is not. Few blocks have such samples.
    template <std::size_t bytes, std::size_t count>
    requires(bytes > 2)
        [[gnu::always_inline]] static bool fractionsWithin(Register (&samples)[count]) {
        scale(samples);
        Register least = samples[0];
        for (std::size_t i = 1; i < count; ++i)
            least = _mm_min_epi32(least, samples[i]);
        return _mm_movemask_epi8(_mm_cmpeq_epi32(least, _mm_set1_epi32(INT32_MIN))) == 0;
    }

private:
    template <std::size_t count>
    [[gnu::always_inline]] static void scale(Register (&samples)[count]) {
        for (Register& sample : samples)
            sample = _mm_cvttps_epi32(_mm_mul_ps(_mm_castsi128_ps(sample), _mm_set1_ps(0x1p31F)));
    }
};

struct Sse41 : SampleVector16<Sse41Words> {
    using Long = Sse41Long;
    static constexpr std::size_t kLongRun = 256;
};

}  // namespace

constexpr SampleKernels kSamplesSse41 = makeSampleKernels<Sse41>();

}  // namespace veltra::kernels
