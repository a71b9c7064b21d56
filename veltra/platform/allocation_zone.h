// SPDX-License-Identifier: MIT
// The zone that the process allocates from: a table with one entry for each way to take or give
// back memory. A service that wants to see allocations puts a wrapper into an entry, keeps what it
// found there, and calls that in turn; to leave, it puts back what it found.
//
// The shared library stands between the process and its allocator: it exports malloc and its
// relatives, which jump through the table of process(). That works in every thread, in libraries
// loaded later and in forked children, as long as the executable itself links the library;
// coverage() tells whether it does. In other builds there is only the table, and only callers of
// its entries are seen. Nothing fails because of that: what is not seen goes to the allocator that
// the process has anyway.
//
// Every entry is one atomic word. Entries are read with acquire order and changed with release
// order, so that what a wrapper kept is seen by every thread that reaches the wrapper. The
// allocator below never changes: a block may be freed through any state of the table, as long as
// every wrapper returns blocks of the entry that it wraps.
#pragma once

#include "veltra/base/flags.h"
#include "veltra/base/installable.h"
#include "veltra/export.h"

#include <atomic>
#include <cstddef>

namespace veltra {

// One state of the table. The functions behave as those of C of the same purpose: null when memory
// is out, errno set. They are noexcept in their type, so that a call compiles to a jump.
struct ZoneEntries {
    // The functions behind malloc, calloc, aligned_alloc, realloc, free and malloc_usable_size.
    using Allocate = void* (*)(std::size_t size) noexcept;
    using AllocateZeroed = void* (*)(std::size_t count, std::size_t size) noexcept;
    using AllocateAligned = void* (*)(std::size_t alignment, std::size_t size) noexcept;
    using Reallocate = void* (*)(void* block, std::size_t size) noexcept;
    using Free = void (*)(void* block) noexcept;
    using Size = std::size_t (*)(void* block) noexcept;

    Allocate allocate = nullptr;                // bytes of any content
    AllocateZeroed allocateZeroed = nullptr;    // all bytes 0; null when count times size overflows
    AllocateAligned allocateAligned = nullptr;  // alignment: a power of two
    Reallocate reallocate = nullptr;            // may move the block; null for `block` allocates
    Free free = nullptr;                        // nothing for null
    Size size = nullptr;  // bytes that the block holds, at least what was asked for; 0 for null
};

class AllocationZone;
extern template class VELTRA_EXPORT Installable<AllocationZone>;

// current() is the zone that the memory services wrap: process(), until another one is installed.
// Install one while no service has wrapped the zone.
class VELTRA_EXPORT AllocationZone : public Installable<AllocationZone> {
public:
    // A zone with these entries, all of them set: callers jump through them unchecked.
    explicit constexpr AllocationZone(const ZoneEntries& entries) noexcept
        : allocate(entries.allocate),
          allocateZeroed(entries.allocateZeroed),
          allocateAligned(entries.allocateAligned),
          reallocate(entries.reallocate),
          free(entries.free),
          size(entries.size) {}

    // What the entries are at this moment, each read for itself.
    // Thread: any. Realtime-safe: yes.
    ZoneEntries entries() const noexcept;

    // Any thread may call through them at any time; they are changed one by one, by whoever wraps
    // or unwraps. `size` stays as it is.
    std::atomic<ZoneEntries::Allocate> allocate;
    std::atomic<ZoneEntries::AllocateZeroed> allocateZeroed;
    std::atomic<ZoneEntries::AllocateAligned> allocateAligned;
    std::atomic<ZoneEntries::Reallocate> reallocate;
    std::atomic<ZoneEntries::Free> free;
    std::atomic<ZoneEntries::Size> size;

    // Whose allocations reach the table of process().
    enum Coverage : unsigned {
        kNone = 0,
        kMalloc = 1,       // calls of malloc by name
        kOperatorNew = 2,  // operator new
        kCLibrary = 4,     // the C library's own allocations
        kFull = 7,
    };

    // Found out by allocating, the first time that it is asked: a profiler, a sanitizer or another
    // allocator may have taken the place of ours without a trace in any symbol table. Only kFull
    // promises that every allocation is seen.
    // Thread: any. Realtime-safe: no.
    static Flags<Coverage> coverage() noexcept;

    // The files that the process's malloc and operator new come from, for a message to people; "?"
    // when nobody knows. A name lives as long as its file is loaded.
    // Thread: any. Realtime-safe: no.
    static const char* mallocOrigin() noexcept;
    static const char* operatorNewOrigin() noexcept;

    // The process's own zone.
    // Thread: any. Realtime-safe: yes.
    static AllocationZone& process() noexcept;
};

}  // namespace veltra
