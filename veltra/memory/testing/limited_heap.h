// A heap with as much memory as a test gives it. The program's own calls of malloc, calloc, realloc
// and free go through it (the linker wraps them), and zone() is a table of the same functions. A
// large request counts against what is available and gets a small block in fact; the rest is the
// real heap's.
#pragma once

#include "veltra/platform/allocation_zone.h"

#include <atomic>
#include <cstddef>

namespace veltra::testing {

struct LimitedHeap {
    static constexpr std::size_t kLarge = 4096;  // requests from this size on are counted
    static constexpr std::size_t kMebibyte = 1048576;

    static inline std::atomic<std::size_t> available{SIZE_MAX / 2};
    static inline std::atomic<std::size_t> largestFragment{SIZE_MAX};
    static inline std::atomic<std::size_t> lastLarge{0};  // the last counted request
    static inline std::atomic<int> largeRequests{0};
    static inline std::atomic<int> smallRefusals{0};  // that many small requests fail, too

    static void* allocate(std::size_t size) noexcept;
    static void* allocateZeroed(std::size_t count, std::size_t size) noexcept;
    static void* allocateAligned(std::size_t alignment, std::size_t size) noexcept;
    static void* reallocate(void* block, std::size_t size) noexcept;
    static void free(void* block) noexcept;
    static std::size_t size(void* block) noexcept;  // exactly what was asked for, when large

    static constexpr ZoneEntries entries() noexcept {
        return {allocate, allocateZeroed, allocateAligned, reallocate, free, size};
    }
    static void reset() noexcept;
};

}  // namespace veltra::testing
