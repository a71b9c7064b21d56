// SPDX-License-Identifier: MIT
// For tests that need the process's own zone to see every allocation.
#pragma once

#include "veltra/platform/allocation_zone.h"

#define SKIP_WITHOUT_REAL_ZONE()                                             \
    if (veltra::AllocationZone::coverage() != veltra::AllocationZone::kFull) \
    GTEST_SKIP() << "allocations do not pass through the zone"
