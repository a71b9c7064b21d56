// SPDX-License-Identifier: MIT
// Marks the code that stands between a caller and the allocator, so that a stack walk can tell the
// caller's frames from the frames of those who serve it.
#pragma once

#include "veltra/base/object_file.h"

#include <cstdint>

#define VELTRA_ZONE_CODE VELTRA_IN_SECTION(veltra_zone)

namespace veltra {

// Whether `address` lies in a function marked VELTRA_ZONE_CODE.
// Thread: any. Realtime-safe: yes.
bool isZoneCode(std::uintptr_t address) noexcept;

}  // namespace veltra
