// SPDX-License-Identifier: MIT
// The process's malloc and its relatives, as the dynamic linker finds them before those of the C
// library: each is one load and one jump through the table of the process's zone.
//
// The table starts with entries that look up the next allocator in the linker's order, put its
// functions into the table, and go on there. The look-up may itself allocate; such a block comes
// from a small arena and is never taken back. In a process where that happens the careful entries,
// which know the arena's blocks, stay in place; everywhere else the next allocator's own functions
// stand in the table. In a process whose allocations come before the library in that order the
// table has the allocator that they use. (The dynamic linker allocates before the first constructor
// runs, so the look-up is over before there is a second thread.)
//
// The file has rules of its own. It is compiled so that the compiler sees nothing special in these
// names, and never by link-time optimisation, which would bind the library's own calls to them
// while a sanitizer owns the rest. Everything here must work before the process's constructors have
// run, in any thread, and in the middle of a fork: no locks, no dynamic initialisation, and
// thread-local words only of the kind that never has to be allocated.
#include "veltra/base/errno_keeper.h"
#include "veltra/base/object_file.h"
#include "veltra/platform/linux/process_zone.h"
#include "veltra/platform/zone_code.h"

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include <dlfcn.h>
#include <malloc.h>
#include <unistd.h>

namespace veltra {

namespace {

// Blocks that were taken while the next allocator was looked up. Each is preceded by its size.
class Arena {
public:
    void* allocate(std::size_t alignment, std::size_t size) noexcept {
        if (size > sizeof m_bytes || alignment > sizeof m_bytes) return nullptr;
        const std::size_t step = std::max(alignment, kGrain);
        const std::size_t wanted = (size + kGrain - 1) / kGrain * kGrain + kGrain + step;
        // Relaxed: the bytes are zero from the start and belong to nobody else.
        const std::size_t start = m_used.fetch_add(wanted, std::memory_order_relaxed);
        if (start > sizeof m_bytes || wanted > sizeof m_bytes - start) return nullptr;
        const auto first = reinterpret_cast<std::uintptr_t>(m_bytes) + start + kGrain;
        auto* block = m_bytes + start + kGrain + (step - first % step) % step;
        std::memcpy(block - kGrain, &size, sizeof size);
        return block;
    }

    bool holds(const void* block) const noexcept {
        const auto offset =
            reinterpret_cast<std::uintptr_t>(block) - reinterpret_cast<std::uintptr_t>(m_bytes);
        return offset < sizeof m_bytes;
    }

    static std::size_t sizeOf(const void* block) noexcept {
        std::size_t size = 0;
        std::memcpy(&size, static_cast<const char*>(block) - kGrain, sizeof size);
        return size;
    }

    bool isUsed() const noexcept { return m_used.load(std::memory_order_relaxed) != 0; }

private:
    static constexpr std::size_t kGrain = alignof(std::max_align_t);
    std::atomic<std::size_t> m_used{0};
    alignas(kGrain) char m_bytes[8192]{};
};

constinit Arena arena;

// Written once, or several times with the same values; a thread reads them after its own writing or
// after an acquire load of `isFound`.
constinit AllocationZone next{ZoneEntries{}};
constinit std::atomic<bool> isFound{false};
VELTRA_NEVER_ALLOCATED constinit thread_local bool isLookingUp = false;

void* failed(int error) noexcept {
    errno = error;
    return nullptr;
}

void* fromArena(std::size_t alignment, std::size_t size) noexcept {
    void* block = arena.allocate(alignment, size);
    return block != nullptr ? block : failed(ENOMEM);
}

bool isOurOwn(const void* function) noexcept {
    Dl_info theirs{};
    Dl_info ours{};
    return ::dladdr(function, &theirs) != 0 && ::dladdr(&arena, &ours) != 0 &&
           theirs.dli_fbase == ours.dli_fbase;
}

// Where the library stands behind the C library in the linker's order, nothing follows it: then the
// process uses whatever comes first. `inLibrary` is the C library's other name for the same.
void* allocatorFunction(const char* name, const char* inLibrary) noexcept {
    void* found = ::dlsym(RTLD_NEXT, name);
    if (found == nullptr) found = ::dlsym(RTLD_DEFAULT, name);
    if (found != nullptr && isOurOwn(found)) found = ::dlsym(RTLD_DEFAULT, inLibrary);
    return found;
}

// `none` refuses everything, in a process that has no allocator.
template <typename Function>
void lookUp(std::atomic<Function>& entry, const char* name, const char* inLibrary,
            Function none) noexcept {
    void* found = allocatorFunction(name, inLibrary);
    entry.store(found != nullptr ? reinterpret_cast<Function>(found) : none,
                std::memory_order_relaxed);  // before `isFound`
}

constexpr ZoneEntries kNone{
    [](std::size_t) noexcept { return failed(ENOMEM); },
    [](std::size_t, std::size_t) noexcept { return failed(ENOMEM); },
    [](std::size_t, std::size_t) noexcept { return failed(ENOMEM); },
    [](void*, std::size_t) noexcept { return failed(ENOMEM); },
    [](void*) noexcept {},
    [](void*) noexcept { return std::size_t{0}; },
};

void findNext() noexcept;

void* firstAllocate(std::size_t size) noexcept {
    if (isLookingUp) return fromArena(1, size);
    findNext();
    return baseEntries().allocate(size);
}

void* firstAllocateZeroed(std::size_t count, std::size_t size) noexcept {
    if (isLookingUp) {
        std::size_t total = 0;
        if (__builtin_mul_overflow(count, size, &total)) return failed(ENOMEM);
        return fromArena(1, total);
    }
    findNext();
    return baseEntries().allocateZeroed(count, size);
}

void* firstAllocateAligned(std::size_t alignment, std::size_t size) noexcept {
    if (isLookingUp) return fromArena(alignment, size);
    findNext();
    return baseEntries().allocateAligned(alignment, size);
}

// During the look-up only the arena's blocks can be known; any other one is left alone.
void carefulFree(void* block) noexcept {
    if (block == nullptr || arena.holds(block) || isLookingUp) return;
    findNext();
    next.free.load(std::memory_order_relaxed)(block);
}

std::size_t carefulSize(void* block) noexcept {
    if (block == nullptr) return 0;
    if (arena.holds(block)) return Arena::sizeOf(block);
    if (isLookingUp) return 0;
    findNext();
    return next.size.load(std::memory_order_relaxed)(block);
}

void* carefulReallocate(void* block, std::size_t size) noexcept {
    if (!arena.holds(block) && !isLookingUp) {
        findNext();
        return next.reallocate.load(std::memory_order_relaxed)(block, size);
    }
    void* moved = firstAllocate(size);
    if (moved != nullptr && block != nullptr)
        std::memcpy(moved, block, std::min(size, carefulSize(block)));
    return moved;
}

template <typename Function>
void replaceFirst(std::atomic<Function>& entry, Function first, Function found) noexcept {
    // Whoever wrapped the zone meanwhile stays; release: with the callers' loads.
    entry.compare_exchange_strong(first, found, std::memory_order_release,
                                  std::memory_order_relaxed);
}

void findNext() noexcept {
    if (isFound.load(std::memory_order_acquire)) return;  // with the store below
    const ErrnoKeeper keeper;
    isLookingUp = true;
    lookUp(next.allocate, "malloc", "__libc_malloc", kNone.allocate);
    lookUp(next.allocateZeroed, "calloc", "__libc_calloc", kNone.allocateZeroed);
    lookUp(next.allocateAligned, "memalign", "__libc_memalign", kNone.allocateAligned);
    lookUp(next.reallocate, "realloc", "__libc_realloc", kNone.reallocate);
    lookUp(next.free, "free", "__libc_free", kNone.free);
    lookUp(next.size, "malloc_usable_size", "__libc_malloc_usable_size", kNone.size);
    isLookingUp = false;
    isFound.store(true, std::memory_order_release);  // with the load above
    const ZoneEntries base = baseEntries();
    replaceFirst(processZone.allocate, +firstAllocate, base.allocate);
    replaceFirst(processZone.allocateZeroed, +firstAllocateZeroed, base.allocateZeroed);
    replaceFirst(processZone.allocateAligned, +firstAllocateAligned, base.allocateAligned);
    replaceFirst(processZone.reallocate, +carefulReallocate, base.reallocate);
    replaceFirst(processZone.free, +carefulFree, base.free);
    replaceFirst(processZone.size, +carefulSize, base.size);
}

constexpr auto kOrder = std::memory_order_acquire;  // with whoever wrapped the zone

}  // namespace

constinit AllocationZone processZone(ZoneEntries{firstAllocate, firstAllocateZeroed,
                                                 firstAllocateAligned, carefulReallocate,
                                                 carefulFree, carefulSize});

ZoneEntries baseEntries() noexcept {
    findNext();
    ZoneEntries base = next.entries();
    if (arena.isUsed()) {
        base.reallocate = carefulReallocate;
        base.free = carefulFree;
        base.size = carefulSize;
    }
    return base;
}

}  // namespace veltra

using veltra::kOrder;
using veltra::processZone;

extern "C" {

VELTRA_ZONE_CODE VELTRA_EXPORT void* malloc(std::size_t size) noexcept {
    return processZone.allocate.load(kOrder)(size);
}

VELTRA_ZONE_CODE VELTRA_EXPORT void* calloc(std::size_t count, std::size_t size) noexcept {
    return processZone.allocateZeroed.load(kOrder)(count, size);
}

VELTRA_ZONE_CODE VELTRA_EXPORT void* realloc(void* block, std::size_t size) noexcept {
    return processZone.reallocate.load(kOrder)(block, size);
}

VELTRA_ZONE_CODE VELTRA_EXPORT void free(void* block) noexcept {
    processZone.free.load(kOrder)(block);
}

VELTRA_ZONE_CODE VELTRA_EXPORT void* memalign(std::size_t alignment, std::size_t size) noexcept {
    return processZone.allocateAligned.load(kOrder)(alignment, size);
}

VELTRA_ZONE_CODE VELTRA_EXPORT void* aligned_alloc(std::size_t alignment,
                                                   std::size_t size) noexcept {
    return processZone.allocateAligned.load(kOrder)(alignment, size);
}

// Keeps errno, unlike all others.
VELTRA_ZONE_CODE VELTRA_EXPORT int posix_memalign(void** block, std::size_t alignment,
                                                  std::size_t size) noexcept {
    if (!std::has_single_bit(alignment) || alignment % sizeof(void*) != 0) return EINVAL;
    const veltra::ErrnoKeeper keeper;
    void* taken = processZone.allocateAligned.load(kOrder)(alignment, size);
    if (taken == nullptr) return ENOMEM;
    *block = taken;
    return 0;
}

VELTRA_ZONE_CODE VELTRA_EXPORT void* valloc(std::size_t size) noexcept {
    return processZone.allocateAligned.load(kOrder)(static_cast<std::size_t>(::getpagesize()),
                                                    size);
}

VELTRA_ZONE_CODE VELTRA_EXPORT void* pvalloc(std::size_t size) noexcept {
    const auto page = static_cast<std::size_t>(::getpagesize());
    if (size > SIZE_MAX - (page - 1)) return veltra::failed(ENOMEM);
    const std::size_t pages = std::max<std::size_t>((size + page - 1) / page, 1);
    return processZone.allocateAligned.load(kOrder)(page, pages * page);
}

}  // extern "C"
