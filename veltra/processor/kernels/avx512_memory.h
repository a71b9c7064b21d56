// SPDX-License-Identifier: MIT
// Registers of 64 bytes to and from memory that need not be aligned; nothing outside the bytes that
// are asked for is touched. Internal linkage: for files that are built for this variant.
#pragma once

#include <cstddef>
#include <cstdint>

#include <immintrin.h>

namespace veltra::kernels {

namespace {

struct Avx512Memory {
    using Register = __m512i;
    static constexpr std::size_t kBytes = 64;

    static std::uint64_t first(std::size_t count) {
        // Not the instruction for it, which 32-bit hosts lack.
        return count < 64 ? (std::uint64_t{1} << count) - 1 : ~std::uint64_t{0};
    }

    template <std::size_t bytes>
    static Register load(const unsigned char* from) {
        if constexpr (bytes == 16)
            return _mm512_castsi128_si512(_mm_loadu_si128(reinterpret_cast<const __m128i*>(from)));
        else if constexpr (bytes == 32)
            return _mm512_castsi256_si512(
                _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from)));
        else if constexpr (bytes == 64)
            return _mm512_loadu_si512(from);
        else
            return _mm512_maskz_loadu_epi8(first(bytes), from);
    }
    template <std::size_t bytes>
    static Register loadFirst(const unsigned char* from, std::size_t count) {
        return _mm512_maskz_loadu_epi8(first(count), from);
    }

    template <std::size_t bytes>
    static void store(unsigned char* to, Register value) {
        if constexpr (bytes == 16)
            _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm512_castsi512_si128(value));
        else if constexpr (bytes == 32)
            _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), _mm512_castsi512_si256(value));
        else if constexpr (bytes == 64)
            _mm512_storeu_si512(to, value);
        else
            _mm512_mask_storeu_epi8(to, first(bytes), value);
    }
    template <std::size_t bytes>
    static void storeFirst(unsigned char* to, Register value, std::size_t count) {
        _mm512_mask_storeu_epi8(to, first(count), value);
    }

    static Register flipped(Register bytes) {
        return _mm512_xor_si512(bytes, _mm512_set1_epi8(-128));
    }
};

}  // namespace

}  // namespace veltra::kernels
