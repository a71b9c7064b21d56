// SPDX-License-Identifier: MIT
// The major number of the kernel's release, read once.
#pragma once

#include <cstdint>

namespace veltra::detail {

// The leading digits of SystemKey::KernelRelease, 0 without any, at most INT32_MAX.
std::int32_t kernelMajorRelease() noexcept;

// Forgets the number: the next call reads it. For tests.
void forgetKernelMajorRelease() noexcept;

}  // namespace veltra::detail
