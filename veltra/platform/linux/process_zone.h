// SPDX-License-Identifier: MIT
// What stands below the process's zone; one of two files defines it.
//   plain_zone.cpp        the C library's functions: nothing reaches the table but by its entries
//   interposed_zone.cpp   exports malloc and its relatives, which jump through the table
#pragma once

#include "veltra/platform/allocation_zone.h"

namespace veltra {

extern AllocationZone processZone;

// The allocator below every wrapper. Thread: any. Realtime-safe: no.
ZoneEntries baseEntries() noexcept;

}  // namespace veltra
