// SPDX-License-Identifier: MIT
// The choice among the walks over UTF-8 bytes.
#pragma once

#include "veltra/processor/detail/kernel_choice.h"
#include "veltra/processor/kernels/utf8_kernels.h"

namespace veltra::detail {

extern KernelChoice<const kernels::Utf8Kernels*> utf8Kernels;

}  // namespace veltra::detail
