// SPDX-License-Identifier: MIT
// Tells whoever reads the log when the services on the zone are called in vain.
#pragma once

#include "veltra/platform/allocation_zone.h"

#include <span>

namespace veltra::detail {

// Logs one warning, once in the life of the process, when the zone in force is the process's own
// and not every allocation of the process reaches it. errno stays as it was.
// Thread: any but audio. Realtime-safe: no.
void noticeUncoveredZone() noexcept;

// The text of that warning for a coverage other than AllocationZone::kFull, NUL-terminated and cut
// to fit.
void writeZoneNotice(std::span<char> text, Flags<AllocationZone::Coverage> coverage,
                     const char* mallocOrigin, const char* operatorNewOrigin) noexcept;

}  // namespace veltra::detail
