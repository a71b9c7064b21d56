// SPDX-License-Identifier: MIT
#include "veltra/processor/kernels/neon_memory.h"
#include "veltra/processor/kernels/swap_vector16.h"

namespace veltra::kernels {

constexpr SwapKernels kSwapNeon = makeSwapKernels<SwapVector16<NeonMemory>>();

}  // namespace veltra::kernels
