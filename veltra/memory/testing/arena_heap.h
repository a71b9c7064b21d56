// SPDX-License-Identifier: MIT
// A heap without locks, so that a forked child can use it whatever other threads did at the fork;
// under a sanitizer the process's own cannot promise that. Blocks have the size of a power of two,
// each such size a region of its own; a block's address tells its size.
#pragma once

#include "veltra/platform/allocation_zone.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <bit>
#include <cstdint>
#include <cstring>

#include <sys/mman.h>

namespace veltra::testing {

class ArenaHeap {
public:
    static inline std::atomic<long> live{0};  // blocks that are out

    static void* allocate(std::size_t size) noexcept {
        const std::size_t units = std::max(size, kSmallest) - 1;
        if (units >= kLargest) return nullptr;
        const auto kind = static_cast<std::size_t>(std::bit_width(units / kSmallest));
        const std::size_t blockSize = kSmallest << kind, count = kRegion / blockSize;
        for (std::size_t index = 0; index < count; ++index)
            if (!s_isTaken[kind][index].exchange(true, std::memory_order_acquire)) {
                ++live;
                return s_start + kind * kRegion + index * blockSize;
            }
        return nullptr;
    }
    static void* allocateZeroed(std::size_t count, std::size_t size) noexcept {
        if (size != 0 && count > kLargest / size) return nullptr;
        void* const block = allocate(count * size);
        return block == nullptr ? nullptr : std::memset(block, 0, count * size);
    }
    // A block lies at a multiple of its own size.
    static void* allocateAligned(std::size_t alignment, std::size_t size) noexcept {
        return allocate(std::max(alignment, size));
    }
    static void* reallocate(void* block, std::size_t size) noexcept {
        if (block != nullptr && size == 0) return free(block), nullptr;
        void* const moved = allocate(size);
        if (block == nullptr || moved == nullptr) return moved;
        std::memcpy(moved, block, std::min(sizeOf(block), size));
        free(block);
        return moved;
    }
    static void free(void* block) noexcept {
        if (block == nullptr) return;
        --live;
        const std::size_t kind = kindOf(block);
        const std::size_t index = offsetOf(block) % kRegion / (kSmallest << kind);
        s_isTaken[kind][index].store(false, std::memory_order_release);  // with allocate()
    }
    static std::size_t sizeOf(void* block) noexcept {
        return block == nullptr ? 0 : kSmallest << kindOf(block);
    }

private:
    static constexpr std::size_t kSmallest = 64, kKinds = 15, kLargest = kSmallest << 14;
    static constexpr std::size_t kRegion = std::size_t{64} << 20;

    static std::size_t offsetOf(void* block) noexcept {
        return static_cast<std::size_t>(static_cast<char*>(block) - s_start);
    }
    static std::size_t kindOf(void* block) noexcept { return offsetOf(block) / kRegion; }

    // Address space; memory comes with use.
    static char* reserve() noexcept {
        void* const all = ::mmap(nullptr, (kKinds + 1) * kRegion, PROT_READ | PROT_WRITE,
                                 MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        return static_cast<char*>(all) +
               (kRegion - reinterpret_cast<std::uintptr_t>(all) % kRegion);
    }

    static inline char* const s_start = reserve();
    static inline std::array<std::array<std::atomic<bool>, kRegion / kSmallest>, kKinds>
        s_isTaken{};
};

inline constexpr ZoneEntries kArenaHeap{
    ArenaHeap::allocate,   ArenaHeap::allocateZeroed, ArenaHeap::allocateAligned,
    ArenaHeap::reallocate, ArenaHeap::free,           ArenaHeap::sizeOf};

}  // namespace veltra::testing
