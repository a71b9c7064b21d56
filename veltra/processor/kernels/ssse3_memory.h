// SPDX-License-Identifier: MIT
// Registers of 16 bytes to and from memory that need not be aligned; nothing outside the bytes that
// are asked for is touched. Internal linkage: for files that are built for this variant.
#pragma once

#include "veltra/processor/kernels/vector_memory.h"

#include <immintrin.h>

namespace veltra::kernels {

namespace {

struct Ssse3Memory {
    using Register = __m128i;
    static constexpr std::size_t kBytes = 16;

    template <std::size_t bytes>
    static Register load(const unsigned char* from) {
        if constexpr (bytes == 4) {
            int word = 0;
            __builtin_memcpy(&word, from, sizeof word);
            return _mm_cvtsi32_si128(word);
        } else if constexpr (bytes == 8)
            return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(from));
        else if constexpr (bytes == 12)
            return _mm_unpacklo_epi64(load<8>(from), load<4>(from + 8));
        else
            return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
    }
    template <std::size_t bytes>
    static Register loadFirst(const unsigned char* from, std::size_t count) {
        return loadThroughBlock<Ssse3Memory, bytes>(from, count);
    }

    template <std::size_t bytes>
    static void store(unsigned char* to, Register value) {
        if constexpr (bytes == 4) {
            const int word = _mm_cvtsi128_si32(value);
            __builtin_memcpy(to, &word, sizeof word);
        } else if constexpr (bytes == 8)
            _mm_storel_epi64(reinterpret_cast<__m128i*>(to), value);
        else if constexpr (bytes == 12) {
            store<8>(to, value);
            store<4>(to + 8, _mm_srli_si128(value, 8));
        } else
            _mm_storeu_si128(reinterpret_cast<__m128i*>(to), value);
    }
    template <std::size_t bytes>
    static void storeFirst(unsigned char* to, Register value, std::size_t count) {
        storeThroughBlock<Ssse3Memory, bytes>(to, value, count);
    }

    static Register shuffled(Register bytes, const Places16& places) {
        return _mm_shuffle_epi8(bytes,
                                _mm_load_si128(reinterpret_cast<const __m128i*>(places.from)));
    }

    static Register flipped(Register bytes) { return _mm_xor_si128(bytes, _mm_set1_epi8(-128)); }
};

}  // namespace

}  // namespace veltra::kernels
