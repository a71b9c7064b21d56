// SPDX-License-Identifier: MIT
#include "veltra/platform/allocation_zone.h"

#include "veltra/base/object_file.h"
#include "veltra/platform/linux/process_zone.h"
#include "veltra/platform/zone_code.h"

#include <cstdlib>
#include <cstring>
#include <new>

#include <dlfcn.h>
#include <link.h>

VELTRA_DECLARE_SECTION(veltra_zone)

namespace veltra {

namespace {

// Volatile, because compilers know of strdup and its like that they change no variable.
VELTRA_NEVER_ALLOCATED constinit thread_local volatile bool probeWasReached = false;

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
Flags<AllocationZone::Coverage> probe() noexcept {
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
    Flags<AllocationZone::Coverage> found;
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

// Whether `map` itself defines `name`, and not only something that it needs.
bool defines(const link_map* map, const char* name) noexcept {
    void* const handle = ::dlopen(map->l_name, RTLD_NOLOAD | RTLD_LAZY);
    if (handle == nullptr) return false;
    Dl_info info{};
    void* home = nullptr;
    const void* found = ::dlsym(handle, name);
    const bool isKnown = found != nullptr && ::dladdr1(found, &info, &home, RTLD_DL_LINKMAP) != 0;
    ::dlclose(handle);
    return isKnown && home == map;
}

const char* definedBehind(const link_map* program, const char* name) noexcept {
    for (const link_map* map = program->l_next; map != nullptr; map = map->l_next)
        if (defines(map, name)) return map->l_name;
    return "?";
}

// In a program that is not position-independent, the address that everybody takes a library's
// function to have may be that of the program's own jump to it: a symbol of no section there.
const char* originOf(const void* function) noexcept {
    Dl_info info{};
    void* symbol = nullptr;
    void* home = nullptr;
    if (function == nullptr || ::dladdr1(function, &info, &symbol, RTLD_DL_SYMENT) == 0 ||
        info.dli_fname == nullptr)
        return "?";
    if (symbol == nullptr || static_cast<const ElfW(Sym)*>(symbol)->st_shndx != SHN_UNDEF)
        return info.dli_fname;
    const char* const name = info.dli_sname;
    if (name == nullptr || ::dladdr1(function, &info, &home, RTLD_DL_LINKMAP) == 0) return "?";
    return definedBehind(static_cast<const link_map*>(home), name);
}

}  // namespace

ZoneEntries AllocationZone::entries() const noexcept {
    constexpr auto kOrder = std::memory_order_acquire;  // with whoever changed the entry
    return {allocate.load(kOrder),   allocateZeroed.load(kOrder), allocateAligned.load(kOrder),
            reallocate.load(kOrder), free.load(kOrder),           size.load(kOrder)};
}

Flags<AllocationZone::Coverage> AllocationZone::coverage() noexcept {
    constexpr unsigned kUnknown = ~0U;
    // Threads that ask at the same time for the first time all probe and find the same; relaxed,
    // because nothing else is published with the number.
    static constinit std::atomic<unsigned> known{kUnknown};
    unsigned answer = known.load(std::memory_order_relaxed);
    if (answer == kUnknown) {
        answer = probe().bits();
        known.store(answer, std::memory_order_relaxed);
    }
    return Flags<Coverage>::fromBits(answer);
}

const char* AllocationZone::mallocOrigin() noexcept {
    return originOf(::dlsym(RTLD_DEFAULT, "malloc"));
}

const char* AllocationZone::operatorNewOrigin() noexcept {
    using New = void* (*)(std::size_t);
    return originOf(reinterpret_cast<const void*>(static_cast<New>(&::operator new)));
}

AllocationZone& AllocationZone::process() noexcept {
    return processZone;
}

bool isZoneCode(std::uintptr_t address) noexcept {
    return address >= reinterpret_cast<std::uintptr_t>(VELTRA_BEGIN_OF(veltra_zone)) &&
           address < reinterpret_cast<std::uintptr_t>(VELTRA_END_OF(veltra_zone));
}

}  // namespace veltra
