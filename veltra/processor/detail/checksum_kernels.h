// SPDX-License-Identifier: MIT
// The choice among the checksum kernels.
#pragma once

#include "veltra/processor/detail/kernel_choice.h"
#include "veltra/processor/kernels/crc_kernels.h"

namespace veltra::detail {

extern KernelChoice<kernels::CrcKernel> crc16Kernels;
extern KernelChoice<kernels::CrcKernel> crc32Kernels;

}  // namespace veltra::detail
