// SPDX-License-Identifier: MIT
// What the tests look into of the answers that are put together from several sources.
#pragma once

#include "veltra/platform/system_queries.h"

namespace veltra {

// In hertz: the frequency that the kernel names as the processor's own, else as its highest; else
// `base`, what the processor itself says, if not 0; else the one at which it runs now.
// Thread: any. Realtime-safe: no.
std::optional<std::uint64_t> processorFrequency(std::uint64_t base) noexcept;

}  // namespace veltra
