// SPDX-License-Identifier: MIT
#include "veltra/memory/detail/zone_notice.h"

#include "veltra/base/errno_keeper.h"
#include "veltra/diagnostics/log_text.h"
#include "veltra/platform/allocation_zone.h"

#include <array>
#include <atomic>
#include <cstdio>

namespace veltra {

void noticeUncoveredZone() noexcept {
    static constinit std::atomic<bool> wasTold{false};  // relaxed: nothing is published with it
    if (wasTold.load(std::memory_order_relaxed)) return;
    if (&AllocationZone::current() != &AllocationZone::process()) return;
    if (AllocationZone::coverage() != AllocationZone::kNone) return;
    if (wasTold.exchange(true, std::memory_order_relaxed)) return;

    const ErrnoKeeper keeper;
    std::array<char, kUsualMessage> text;
    const int length =
        std::snprintf(text.data(), text.size(),
                      "allocations of this process do not pass through the framework's zone "
                      "(malloc is from %s)",
                      AllocationZone::mallocOrigin());
    if (length > 0)
        logMessage(kLogWarning, wantedBanner(), "AllocationZone", std::string_view(text.data()));
}

}  // namespace veltra
