#include "veltra/memory/testing/limited_heap.h"

#include <array>
#include <mutex>

#include <malloc.h>

extern "C" {
void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void* __real_realloc(void* block, std::size_t size);
void __real_free(void* block);
}

namespace veltra::testing {

namespace {

struct LargeBlock {
    void* address;
    std::size_t size;
};
std::mutex lock;  // over what follows
std::array<LargeBlock, 64> largeBlocks{};

void* take(std::size_t size, std::size_t alignment) noexcept {
    const std::lock_guard guard(lock);
    ++LimitedHeap::largeRequests;
    LimitedHeap::lastLarge = size;
    if (size > LimitedHeap::available || size > LimitedHeap::largestFragment) return nullptr;
    for (LargeBlock& block : largeBlocks) {
        if (block.address != nullptr) continue;
        block.address = alignment == 0 ? __real_calloc(1, 64) : ::memalign(alignment, 64);
        block.size = size;
        LimitedHeap::available -= size;
        return block.address;
    }
    return nullptr;
}

LargeBlock* find(const void* address) noexcept {
    for (LargeBlock& block : largeBlocks)
        if (block.address == address) return &block;
    return nullptr;
}

}  // namespace

void* LimitedHeap::allocate(std::size_t size) noexcept {
    if (size >= kLarge) return take(size, 0);
    return smallRefusals > 0 && smallRefusals-- > 0 ? nullptr : __real_malloc(size);
}

void* LimitedHeap::allocateZeroed(std::size_t count, std::size_t size) noexcept {
    if (count * size >= kLarge) return take(count * size, 0);
    return smallRefusals > 0 && smallRefusals-- > 0 ? nullptr : __real_calloc(count, size);
}

void* LimitedHeap::allocateAligned(std::size_t alignment, std::size_t size) noexcept {
    return size >= kLarge ? take(size, alignment) : ::memalign(alignment, size);
}

void* LimitedHeap::reallocate(void* block, std::size_t size) noexcept {
    return smallRefusals > 0 && smallRefusals-- > 0 ? nullptr : __real_realloc(block, size);
}

void LimitedHeap::free(void* block) noexcept {
    if (block == nullptr) return;
    {
        const std::lock_guard guard(lock);
        if (LargeBlock* large = find(block)) {
            available += large->size;
            large->address = nullptr;
        }
    }
    __real_free(block);
}

std::size_t LimitedHeap::size(void* block) noexcept {
    const std::lock_guard guard(lock);
    const LargeBlock* large = block != nullptr ? find(block) : nullptr;
    return large != nullptr ? large->size : ::malloc_usable_size(block);
}

void LimitedHeap::reset() noexcept {
    available = SIZE_MAX / 2;
    largestFragment = SIZE_MAX;
    lastLarge = 0;
    largeRequests = smallRefusals = 0;
}

}  // namespace veltra::testing

using veltra::testing::LimitedHeap;

extern "C" {
void* __wrap_malloc(std::size_t size) {
    return LimitedHeap::allocate(size);
}
void* __wrap_calloc(std::size_t count, std::size_t size) {
    return LimitedHeap::allocateZeroed(count, size);
}
void* __wrap_realloc(void* block, std::size_t size) {
    return LimitedHeap::reallocate(block, size);
}
void __wrap_free(void* block) {
    LimitedHeap::free(block);
}
}
