// SPDX-License-Identifier: MIT
#include "veltra/memory/detail/zone_notice.h"

#include "veltra/diagnostics/log_text.h"
#include "veltra/platform/allocation_zone.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdio>

namespace veltra {

namespace {

constexpr std::uint32_t kWarningLevel = 4;

}  // namespace

void noticeUncoveredZone() noexcept {
    static constinit std::atomic<bool> wasTold{false};  // relaxed: nothing is published with it
    if (wasTold.load(std::memory_order_relaxed)) return;
    if (&AllocationZone::current() != &AllocationZone::process()) return;
    if (AllocationZone::coverage() != AllocationZone::kNone) return;
    if (wasTold.exchange(true, std::memory_order_relaxed)) return;

    const int error = errno;
    std::array<char, kUsualMessage> text;
    const int length =
        std::snprintf(text.data(), text.size(),
                      "allocations of this process do not pass through the framework's zone "
                      "(malloc is from %s)",
                      AllocationZone::mallocOrigin());
    if (length > 0)
        logMessage(kWarningLevel, wantedBanner(), "AllocationZone", std::string_view(text.data()));
    errno = error;
}

}  // namespace veltra
