// SPDX-License-Identifier: MIT
// The walk over groups of bytes that the vector variants of the swaps share. `Vector` supplies the
// registers, has internal linkage, and keeps the instances of the templates out of other files.
#pragma once

#include "veltra/processor/kernels/swap_kernels.h"
#include "veltra/processor/kernels/vector_memory.h"

namespace veltra::kernels {

template <class Vector>
concept SwapVector = MovesBytes<Vector, Vector::kBytes> && requires(typename Vector::Register r) {
    // The groups of that size reversed.
    { Vector::template swapped<4>(r) } -> RegisterOf<Vector>;
};

// Vectors that know a better step for groups of 3 bytes than three quarters of a register: so many
// bytes at once, all of them read before the first is written.
template <class Vector>
concept HasSampleStep = requires(unsigned char* to, const unsigned char* from) {
    requires Vector::kSampleStep % 3 == 0;
    { Vector::swapSamples(to, from) } -> std::same_as<void>;
};

template <SwapVector Vector, std::size_t size>
static void swapGroups(unsigned char* destination, const unsigned char* source,
                       std::size_t count) noexcept {
    constexpr std::size_t kBlock = size == 3 ? Vector::kBytes / 4 * 3 : Vector::kBytes;
    constexpr std::size_t kBlocks = 4;
    const std::size_t bytes = size * count;
    std::size_t at = 0;
    if constexpr (size == 3 && HasSampleStep<Vector>) {
        for (; bytes - at >= Vector::kSampleStep; at += Vector::kSampleStep)
            Vector::swapSamples(destination + at, source + at);
    }
    for (; bytes - at >= kBlocks * kBlock; at += kBlocks * kBlock) {
        typename Vector::Register blocks[kBlocks];
        for (std::size_t i = 0; i < kBlocks; ++i)
            blocks[i] = Vector::template load<kBlock>(source + at + i * kBlock);
        for (std::size_t i = 0; i < kBlocks; ++i) {
            Vector::template store<kBlock>(destination + at + i * kBlock,
                                           Vector::template swapped<size>(blocks[i]));
        }
    }
    for (; bytes - at >= kBlock; at += kBlock) {
        Vector::template store<kBlock>(
            destination + at,
            Vector::template swapped<size>(Vector::template load<kBlock>(source + at)));
    }
    if (const std::size_t rest = bytes - at; rest > 0) {
        Vector::template storeFirst<kBlock>(
            destination + at,
            Vector::template swapped<size>(Vector::template loadFirst<kBlock>(source + at, rest)),
            rest);
    }
}

template <SwapVector Vector, SwapVector SampleVector = Vector>
consteval SwapKernels makeSwapKernels() {
    return {swapGroups<Vector, 2>, swapGroups<Vector, 4>, swapGroups<Vector, 8>,
            swapGroups<SampleVector, 3>, swapGroups<Vector, 1>};
}

}  // namespace veltra::kernels
