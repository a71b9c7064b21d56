// SPDX-License-Identifier: MIT
// What the memory of every vector variant can do (ssse3_memory.h, avx2_memory.h, avx512_memory.h,
// neon_memory.h).
#pragma once

#include <concepts>
#include <cstddef>

namespace veltra::kernels {

template <class Value, class Memory>
concept RegisterOf = std::same_as<Value, typename Memory::Register>;

// Moves the first `bytes` of a register, or the first n of them (less than `bytes`), to and from
// memory that need not be aligned, and touches nothing else.
template <class Memory, std::size_t bytes>
concept MovesBytes = requires(const unsigned char* from, unsigned char* to, std::size_t n,
                              typename Memory::Register value) {
    { Memory::template load<bytes>(from) } -> RegisterOf<Memory>;
    { Memory::template loadFirst<bytes>(from, n) } -> RegisterOf<Memory>;
    { Memory::template store<bytes>(to, value) } -> std::same_as<void>;
    { Memory::template storeFirst<bytes>(to, value, n) } -> std::same_as<void>;
};

// For instruction sets that cannot mask a load or a store.
template <class Memory, std::size_t bytes>
[[gnu::always_inline]] inline typename Memory::Register loadThroughBlock(const unsigned char* from,
                                                                         std::size_t count) {
    unsigned char block[bytes] = {};
    __builtin_memcpy(block, from, count);
    return Memory::template load<bytes>(block);
}

template <class Memory, std::size_t bytes>
[[gnu::always_inline]] inline void storeThroughBlock(unsigned char* to,
                                                     typename Memory::Register value,
                                                     std::size_t count) {
    unsigned char block[bytes];
    Memory::template store<bytes>(block, value);
    __builtin_memcpy(to, block, count);
}

// Where the bytes of a register of 16 come from, for a shuffle that makes zeros of kZero.
struct alignas(16) Places16 {
    static constexpr unsigned char kZero = 0x80;
    unsigned char from[16] = {};
};

// Registers of 16 bytes in little-endian order, and what variants of that width have in common
// (sample_vector16.h, swap_vector16.h).
template <class Memory>
concept Memory16 = Memory::kBytes == 16 &&
                   MovesBytes<Memory, 4>&& MovesBytes<Memory, 8>&& MovesBytes<Memory, 12>&&
                       MovesBytes<Memory, 16>&& requires(typename Memory::Register bytes,
                                                         const Places16& places) {
    { Memory::shuffled(bytes, places) } -> RegisterOf<Memory>;
    // The top bit of every byte inverted.
    { Memory::flipped(bytes) } -> RegisterOf<Memory>;
};

}  // namespace veltra::kernels
