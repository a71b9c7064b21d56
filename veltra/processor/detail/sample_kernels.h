// SPDX-License-Identifier: MIT
// The choice among the sample converters.
#pragma once

#include "veltra/processor/detail/kernel_choice.h"
#include "veltra/processor/kernels/sample_kernels.h"

namespace veltra::detail {

extern KernelChoice<const kernels::SampleKernels*> sampleKernels;
extern KernelChoice<const kernels::SampleConverters*> float64Kernels;

}  // namespace veltra::detail
