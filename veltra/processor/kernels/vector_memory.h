// SPDX-License-Identifier: MIT
// What the memory of every vector variant can do (avx2_memory.h, avx512_memory.h).
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

}  // namespace veltra::kernels
