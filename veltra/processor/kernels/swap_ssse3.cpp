// SPDX-License-Identifier: MIT
#include "veltra/processor/kernels/ssse3_memory.h"
#include "veltra/processor/kernels/swap_vector16.h"

namespace veltra::kernels {

constexpr SwapKernels kSwapSsse3 = makeSwapKernels<SwapVector16<Ssse3Memory>>();

}  // namespace veltra::kernels
