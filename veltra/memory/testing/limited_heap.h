// SPDX-License-Identifier: MIT
// A heap with as many MiB as a test gives it; requests below one MiB are free. The program's own
// malloc, calloc, realloc and free go through it (the linker wraps them), and so does kLimitedHeap.
#pragma once

#include "veltra/platform/allocation_zone.h"

#include <bit>
#include <cerrno>

#include <malloc.h>

extern "C" {
void* __real_malloc(std::size_t size) noexcept;
void* __real_calloc(std::size_t count, std::size_t size) noexcept;
void* __real_realloc(void* block, std::size_t size) noexcept;
void __real_free(void* block) noexcept;
}

namespace veltra::testing {

inline constexpr std::size_t kMiB = 1048576;

struct LimitedHeap {
    static inline std::atomic<int> available{1000}, largest{1000};  // in all, in one block
    static inline std::atomic<int> requests{0}, last{0};            // of a MiB and more
    static void reset() noexcept { requests = 0, available = largest = 1000; }

    static bool grants(std::size_t size) noexcept {
        const int cost = static_cast<int>(size / kMiB);
        if (cost == 0) return true;
        ++requests;
        last = cost;
        errno = ENOMEM;  // as a heap that refuses; without a meaning else
        if (cost > largest) return false;
        const bool isEnough = available.fetch_sub(cost) >= cost;
        if (!isEnough) available += cost;
        return isEnough;
    }
};

}  // namespace veltra::testing

extern "C" {
[[gnu::used]] inline void* __wrap_malloc(std::size_t size) noexcept {
    return veltra::testing::LimitedHeap::grants(size) ? __real_malloc(size) : nullptr;
}
[[gnu::used]] inline void* __wrap_calloc(std::size_t count, std::size_t size) noexcept {
    return veltra::testing::LimitedHeap::grants(count * size) ? __real_calloc(count, size)
                                                              : nullptr;
}
[[gnu::used]] inline void* __wrap_realloc(void* block, std::size_t size) noexcept {
    return veltra::testing::LimitedHeap::grants(size) ? __real_realloc(block, size) : nullptr;
}
[[gnu::used]] inline void __wrap_free(void* block) noexcept {
    using veltra::testing::kMiB;
    veltra::testing::LimitedHeap::available += static_cast<int>(::malloc_usable_size(block) / kMiB);
    __real_free(block);
}
}

namespace veltra::testing {

inline constexpr ZoneEntries kRealHeap{__real_malloc,  __real_calloc, ::memalign,
                                       __real_realloc, __real_free,   ::malloc_usable_size};
inline constexpr ZoneEntries kLimitedHeap{
    __wrap_malloc,
    __wrap_calloc,
    [](std::size_t alignment, std::size_t size) noexcept {
        if (!std::has_single_bit(alignment)) {
            errno = EINVAL;  // here, because a sanitizer's heap ends the process instead
            return static_cast<void*>(nullptr);
        }
        return LimitedHeap::grants(size) ? ::memalign(alignment, size) : nullptr;
    },
    __wrap_realloc,
    __wrap_free,
    [](void* block) noexcept { return ::malloc_usable_size(block) / kMiB * kMiB; }};

}  // namespace veltra::testing
