// SPDX-License-Identifier: MIT
// A vector for swap_walk.h out of registers of 16 bytes that can be shuffled.
#pragma once

#include "veltra/processor/kernels/swap_walk.h"

namespace veltra::kernels {

// What does not belong to a whole group stays as it is.
template <int size>
consteval Places16 reversingPlaces16() {
    Places16 places;
    for (int byte = 0; byte < 16; ++byte) {
        const int group = byte / size * size;
        const int from = group + size <= 16 ? group + size - 1 - byte % size : byte;
        places.from[byte] = static_cast<unsigned char>(from);
    }
    return places;
}

template <int size>
inline constexpr Places16 kReversing16 = reversingPlaces16<size>();

template <Memory16 Memory>
struct SwapVector16 : Memory {
    using Register = typename Memory::Register;
    static constexpr std::size_t kSampleStep = 48;

    template <int size>
    static Register swapped(Register bytes) {
        if constexpr (size == 1)
            return Memory::flipped(bytes);
        else
            return Memory::shuffled(bytes, kReversing16<size>);
    }

    // Three times five samples and a byte that the next store puts right; then the last four bytes.
    static void swapSamples(unsigned char* to, const unsigned char* from) {
        const Register first = Memory::template load<16>(from);
        const Register second = Memory::template load<16>(from + 15);
        const Register third = Memory::template load<16>(from + 30);
        const Register end = Memory::template load<16>(from + 32);
        Memory::template store<16>(to, swapped<3>(first));
        Memory::template store<16>(to + 15, swapped<3>(second));
        Memory::template store<16>(to + 30, swapped<3>(third));
        Memory::template store<4>(to + 44, Memory::shuffled(end, kEnd));
    }

private:
    // Of bytes 32 to 47: the first byte of the last sample but one, which it ends with, and the
    // last sample.
    static constexpr Places16 kEnd{{10, 15, 14, 13}};
};

}  // namespace veltra::kernels
