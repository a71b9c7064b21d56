// SPDX-License-Identifier: MIT
#include "veltra/memory/detail/zone_notice.h"

#include "veltra/base/errno_keeper.h"
#include "veltra/diagnostics/log_text.h"
#include "veltra/platform/allocation_zone.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdio>

namespace veltra::detail {

void writeZoneNotice(std::span<char> text, Flags<AllocationZone::Coverage> coverage,
                     const char* mallocOrigin, const char* operatorNewOrigin) noexcept {
    if (coverage == AllocationZone::kNone) {
        std::snprintf(text.data(), text.size(),
                      "allocations of this process do not pass through the framework's zone "
                      "(malloc is from %s)",
                      mallocOrigin);
        return;
    }
    std::array<char, kUsualMessage> unseen{};
    std::size_t used = 0;
    const auto add = [&](AllocationZone::Coverage part, const char* name, const char* origin) {
        if (coverage.contains(part)) return;
        const int length = std::snprintf(unseen.data() + used, unseen.size() - used,
                                         origin != nullptr ? "%s%s (from %s)" : "%s%s",
                                         used == 0 ? "" : ", ", name, origin);
        if (length > 0) used = std::min(used + static_cast<std::size_t>(length), unseen.size() - 1);
    };
    add(AllocationZone::kMalloc, "malloc", mallocOrigin);
    add(AllocationZone::kOperatorNew, "operator new", operatorNewOrigin);
    add(AllocationZone::kCLibrary, "the C library's own", nullptr);
    std::snprintf(text.data(), text.size(),
                  "some allocations of this process do not pass through the framework's zone: %s",
                  unseen.data());
}

void noticeUncoveredZone() noexcept {
    static constinit std::atomic<bool> wasTold{false};  // relaxed: nothing is published with it
    if (wasTold.load(std::memory_order_relaxed)) return;
    if (&AllocationZone::current() != &AllocationZone::process()) return;
    const Flags<AllocationZone::Coverage> coverage = AllocationZone::coverage();
    if (coverage == AllocationZone::kFull) return;
    if (wasTold.exchange(true, std::memory_order_relaxed)) return;

    const ErrnoKeeper keeper;
    std::array<char, kUsualMessage> text;
    writeZoneNotice(text, coverage, AllocationZone::mallocOrigin(),
                    AllocationZone::operatorNewOrigin());
    logMessage(kLogWarning, wantedBanner(), "AllocationZone", std::string_view(text.data()));
}

}  // namespace veltra::detail
