// SPDX-License-Identifier: MIT
#include "veltra/processor/kernels/avx2_memory.h"
#include "veltra/processor/kernels/swap_walk.h"

namespace veltra::kernels {

namespace {

// The halves that are loaded for groups of 3 bytes overlap; twelve bytes of each are kept.
template <int size>
constexpr Avx2Memory::Places reversingPlaces() {
    Avx2Memory::Places places;
    for (int byte = 0; byte < 32; ++byte) {
        const int inHalf = byte % 16;
        const int start = size == 3 && byte >= 16 ? 4 : 0;
        const int from = start + inHalf / size * size + size - 1 - inHalf % size;
        places.from[byte] = static_cast<unsigned char>(from % 16);
    }
    return places;
}

template <int size>
constexpr Avx2Memory::Places kReversing = reversingPlaces<size>();

struct Avx2 : Avx2Memory {
    template <int size>
    static Register swapped(Register bytes) {
        if constexpr (size == 1) return flipped(bytes);
        const Register halves = shuffled(bytes, kReversing<size>);
        return size == 3 ? joined<12>(halves) : halves;
    }
};

}  // namespace

constexpr SwapKernels kSwapAvx2 = makeSwapKernels<Avx2>();

}  // namespace veltra::kernels
