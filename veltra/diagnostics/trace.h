// SPDX-License-Identifier: MIT
// Trace output for C callers. The entry points are kept so that traced programs link; they emit
// nothing.
#pragma once

#include "veltra/c_linkage.h"

#include <stddef.h>

VELTRA_C_BEGIN

// Meant to dump `count` bytes at `address`, but deliberately reads and writes nothing. Any address
// and any count are allowed, even a negative one.
// Thread: any. Realtime-safe: yes.
VELTRA_EXPORT void QKOutputMemory(const void* address, ptrdiff_t count) VELTRA_NOEXCEPT;

VELTRA_C_END
