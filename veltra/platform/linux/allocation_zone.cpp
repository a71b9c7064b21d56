// SPDX-License-Identifier: MIT
#include "veltra/platform/allocation_zone.h"

#include "veltra/base/object_file.h"
#include "veltra/platform/linux/process_zone.h"
#include "veltra/platform/zone_code.h"

#include <cstdlib>
#include <cstring>
#include <new>

#include <dlfcn.h>

VELTRA_DECLARE_SECTION(veltra_zone)

namespace veltra {

namespace {

VELTRA_NEVER_ALLOCATED constinit thread_local bool probeWasReached = false;

// Forwards to the allocator below every wrapper rather than to what it replaced: two probes that
// overlap then cannot call one another for ever.
void* probeAllocate(std::size_t size) noexcept {
    probeWasReached = true;
    return baseEntries().allocate(size);
}

template <typename Take>
bool reachesProbe(Take take) noexcept {
    probeWasReached = false;
    take();
    return probeWasReached;
}

// The pointers are volatile because a compiler may leave out an allocation whose block nobody uses.
unsigned probe() noexcept {
    using Allocate = void* (*)(std::size_t);
    using Free = void (*)(void*);
    const auto malloc = reinterpret_cast<Allocate>(::dlsym(RTLD_DEFAULT, "malloc"));
    const auto free = reinterpret_cast<Free>(::dlsym(RTLD_DEFAULT, "free"));
    if (malloc == nullptr || free == nullptr) return AllocationZone::kNone;

    void* volatile fromMalloc = nullptr;
    void* volatile fromNew = nullptr;
    void* volatile fromLibrary = nullptr;
    // acq_rel: with the loads of every caller, as whoever wraps the zone.
    auto* before = processZone.allocate.exchange(probeAllocate, std::memory_order_acq_rel);
    unsigned found = AllocationZone::kNone;
    if (reachesProbe([&] { fromMalloc = malloc(24); })) found |= AllocationZone::kMalloc;
    if (reachesProbe([&] { fromNew = ::operator new(24, std::nothrow); }))
        found |= AllocationZone::kOperatorNew;
    if (reachesProbe([&] { fromLibrary = ::strdup("zone"); })) found |= AllocationZone::kCLibrary;
    // Another thread may have wrapped the zone meanwhile: then its wrapper stays.
    auto* expected = +probeAllocate;
    processZone.allocate.compare_exchange_strong(expected, before, std::memory_order_acq_rel,
                                                 std::memory_order_relaxed);
    free(fromMalloc);
    ::operator delete(fromNew);
    std::free(fromLibrary);
    return found;
}

}  // namespace

ZoneEntries AllocationZone::entries() const noexcept {
    constexpr auto kOrder = std::memory_order_acquire;  // with whoever changed the entry
    return {allocate.load(kOrder),   allocateZeroed.load(kOrder), allocateAligned.load(kOrder),
            reallocate.load(kOrder), free.load(kOrder),           size.load(kOrder)};
}

unsigned AllocationZone::coverage() noexcept {
    constexpr unsigned kUnknown = ~0U;
    // Threads that ask at the same time for the first time all probe and find the same; relaxed,
    // because nothing else is published with the number.
    static constinit std::atomic<unsigned> known{kUnknown};
    unsigned answer = known.load(std::memory_order_relaxed);
    if (answer == kUnknown) {
        answer = probe();
        known.store(answer, std::memory_order_relaxed);
    }
    return answer;
}

const char* AllocationZone::mallocOrigin() noexcept {
    Dl_info info{};
    const void* malloc = ::dlsym(RTLD_DEFAULT, "malloc");
    if (malloc == nullptr || ::dladdr(malloc, &info) == 0 || info.dli_fname == nullptr) return "?";
    return info.dli_fname;
}

AllocationZone& AllocationZone::process() noexcept {
    return processZone;
}

bool isZoneCode(std::uintptr_t address) noexcept {
    return address >= reinterpret_cast<std::uintptr_t>(VELTRA_BEGIN_OF(veltra_zone)) &&
           address < reinterpret_cast<std::uintptr_t>(VELTRA_END_OF(veltra_zone));
}

}  // namespace veltra
