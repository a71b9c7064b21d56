// SPDX-License-Identifier: MIT
#include "veltra/processor/kernels/avx512_memory.h"
#include "veltra/processor/kernels/swap_walk.h"

namespace veltra::kernels {

namespace {

struct alignas(64) Places {
    unsigned char from[64] = {};
};

template <int size>
consteval Places reversingPlaces() {
    Places places;
    for (int byte = 0; byte < 64; ++byte) {
        const int group = byte / size * size;
        places.from[byte] = static_cast<unsigned char>((group + size - 1 - byte % size) % 64);
    }
    return places;
}

template <int size>
constexpr Places kReversing = reversingPlaces<size>();

struct Avx512 : Avx512Memory {
    // Without a mask: the block behind could not be loaded before a masked store is through.
    template <std::size_t bytes>
    static void store(unsigned char* to, Register value) {
        if constexpr (bytes == 64) {
            Avx512Memory::store<64>(to, value);
        } else {
            Avx512Memory::store<32>(to, value);
            _mm_storeu_si128(reinterpret_cast<__m128i*>(to + 32),
                             _mm512_extracti32x4_epi32(value, 2));
        }
    }

    template <int size>
    static Register swapped(Register bytes) {
        const Register places = _mm512_load_si512(kReversing<size>.from);
        if constexpr (size == 1)
            return flipped(bytes);
        else if constexpr (size == 3)
            return _mm512_permutexvar_epi8(places, bytes);
        else
            return _mm512_shuffle_epi8(bytes, places);
    }
};

}  // namespace

constexpr SwapKernels kSwapAvx512 = makeSwapKernels<Avx512>();

}  // namespace veltra::kernels
