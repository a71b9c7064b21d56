// SPDX-License-Identifier: MIT
// Runs of groups of bytes, each of them reversed, and the variants, each in a file of its own.
#pragma once

#include <cstddef>

namespace veltra::kernels {

// `count` groups. The destination may be the source, lie apart from it or begin in front of it.
using SwapKernel = void (*)(unsigned char* destination, const unsigned char* source,
                            std::size_t count) noexcept;

struct SwapKernels {
    SwapKernel words16;
    SwapKernel words32;
    SwapKernel words64;
    SwapKernel samples24;
    SwapKernel signs8;  // the top bit of each byte inverted
};

extern const SwapKernels kSwapPlain;
extern const SwapKernels kSwapNeon;
extern const SwapKernels kSwapSsse3;
extern const SwapKernels kSwapAvx2;
extern const SwapKernels kSwapAvx512;  // needs AVX-512 F, BW, VL and VBMI, and BMI2

}  // namespace veltra::kernels
