// SPDX-License-Identifier: MIT
#include "veltra/processor/kernels/avx2_memory.h"
#include "veltra/processor/kernels/ssse3_memory.h"
#include "veltra/processor/kernels/swap_vector16.h"

namespace veltra::kernels {

namespace {

template <int size>
consteval Avx2Memory::Places reversingPlaces() {
    Avx2Memory::Places places;
    for (int byte = 0; byte < 32; ++byte) {
        const int inHalf = byte % 16;
        places.from[byte] =
            static_cast<unsigned char>(inHalf / size * size + size - 1 - inHalf % size);
    }
    return places;
}

template <int size>
constexpr Avx2Memory::Places kReversing = reversingPlaces<size>();

struct Avx2 : Avx2Memory {
    template <int size>
    static Register swapped(Register bytes) {
        if constexpr (size == 1)
            return flipped(bytes);
        else
            return shuffled(bytes, kReversing<size>);
    }
};

}  // namespace

constexpr SwapKernels kSwapAvx2 = makeSwapKernels<Avx2, SwapVector16<Ssse3Memory>>();

}  // namespace veltra::kernels
