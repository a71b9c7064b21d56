// SPDX-License-Identifier: MIT
// The carry-less multiplication of x86 for crc_fold.h. Internal linkage: for files that are built
// for it.
#pragma once

#include "veltra/processor/detail/crc_polynomial.h"

#include <immintrin.h>

namespace veltra::kernels {

namespace {

struct Pclmul {
    using Block = __m128i;

    static Block load(const void* bytes) noexcept {
        return _mm_loadu_si128(static_cast<const __m128i*>(bytes));
    }
    static Block ofWords(std::uint64_t low, std::uint64_t high) noexcept {
        return _mm_set_epi64x(static_cast<long long>(high), static_cast<long long>(low));
    }
    static Block widened(const std::uint32_t* words) noexcept {
        return _mm_cvtepu32_epi64(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(words)));
    }
    template <class Crc>
    static Block inOrder(Block bytes) noexcept {
        const Block reverse = _mm_set_epi8(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
        if constexpr (detail::kMirrored<Crc>)
            return bytes;
        else
            return _mm_shuffle_epi8(bytes, reverse);
    }
    template <int halves>
    static Block product(Block one, Block other) noexcept {
        return _mm_clmulepi64_si128(one, other, halves);
    }
    static Block shiftedDown(Block block) noexcept { return _mm_srli_epi64(block, 32); }
    template <int place>
    static std::uint32_t word(Block block) noexcept {
        return static_cast<std::uint32_t>(_mm_extract_epi32(block, place));
    }
};

}  // namespace

}  // namespace veltra::kernels
