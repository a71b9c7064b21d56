// SPDX-License-Identifier: MIT
// Registers of 32 bytes to and from memory that need not be aligned; nothing outside the bytes that
// are asked for is touched. Internal linkage: for files that are built for this variant.
#pragma once

#include "veltra/processor/kernels/vector_memory.h"

#include <immintrin.h>

namespace veltra::kernels {

namespace {

struct Avx2Memory {
    using Register = __m256i;
    static constexpr std::size_t kBytes = 32;

    // Where the upper half of a register begins that `load` filled with so many bytes.
    static constexpr int upperStart(int bytes) { return bytes == 24 ? 8 : bytes == 32 ? 16 : 0; }

    static __m128i loadHalf(const unsigned char* from) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
    }
    static void storeHalf(unsigned char* to, __m128i half) {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to), half);
    }

    template <std::size_t bytes>
    static Register load(const unsigned char* from) {
        if constexpr (bytes == 8)
            return _mm256_broadcastq_epi64(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(from)));
        else if constexpr (bytes == 16)
            return _mm256_broadcastsi128_si256(loadHalf(from));
        else
            return _mm256_inserti128_si256(_mm256_castsi128_si256(loadHalf(from)),
                                           loadHalf(from + upperStart(bytes)), 1);
    }
    template <std::size_t bytes>
    static Register loadFirst(const unsigned char* from, std::size_t count) {
        return loadThroughBlock<Avx2Memory, bytes>(from, count);
    }

    template <std::size_t bytes>
    static void store(unsigned char* to, Register value) {
        const __m128i low = _mm256_castsi256_si128(value);
        if constexpr (bytes == 8)
            _mm_storel_epi64(reinterpret_cast<__m128i*>(to), low);
        else if constexpr (bytes == 16)
            storeHalf(to, low);
        else if constexpr (bytes == 32)
            _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), value);
        else {
            storeHalf(to, low);
            _mm_storel_epi64(reinterpret_cast<__m128i*>(to + 16),
                             _mm256_extracti128_si256(value, 1));
        }
    }
    template <std::size_t bytes>
    static void storeFirst(unsigned char* to, Register value, std::size_t count) {
        storeThroughBlock<Avx2Memory, bytes>(to, value, count);
    }

    // Where the bytes of a register come from, within its own half; 0x80 makes a zero.
    struct alignas(32) Places {
        unsigned char from[32] = {};
    };
    static Register shuffled(Register bytes, const Places& places) {
        return _mm256_shuffle_epi8(
            bytes, _mm256_load_si256(reinterpret_cast<const __m256i*>(places.from)));
    }

    // The first `bytes` of each half side by side.
    template <std::size_t bytes>
    static Register joined(Register halves) {
        if constexpr (bytes == 4)
            return _mm256_permutevar8x32_epi32(halves, _mm256_setr_epi32(0, 4, 0, 0, 0, 0, 0, 0));
        else if constexpr (bytes == 8)
            return _mm256_permute4x64_epi64(halves, 0x08);
        else if constexpr (bytes == 12)
            return _mm256_permutevar8x32_epi32(halves, _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 0, 0));
        else
            return halves;
    }

    static Register flipped(Register bytes) {
        return _mm256_xor_si256(bytes, _mm256_set1_epi8(-128));
    }
};

}  // namespace

}  // namespace veltra::kernels
