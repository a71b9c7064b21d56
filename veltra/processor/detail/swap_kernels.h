// SPDX-License-Identifier: MIT
// The choice among the byte swaps.
#pragma once

#include "veltra/processor/detail/kernel_choice.h"
#include "veltra/processor/kernels/swap_kernels.h"

namespace veltra::detail {

extern KernelChoice<const kernels::SwapKernels*> swapKernels;

}  // namespace veltra::detail
