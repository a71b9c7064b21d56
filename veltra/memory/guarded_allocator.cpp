// SPDX-License-Identifier: MIT
#include "veltra/memory/guarded_allocator.h"

#include "veltra/platform/no_cancellation.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace veltra {

namespace {

constexpr std::string_view kOutOfMemory = "Fatal error: out of memory\n";

// Plain words by contract: relaxed loads and stores, which may lose an update but never tear. Only
// the policy has an order, so that its handler is there when it is in force.
constexpr auto kPlain = std::memory_order_relaxed;
constinit std::atomic<bool> isInitialised{false};
constinit std::atomic<std::int32_t> blockCount{0};
constinit std::atomic<int> failureAction{kMemExceptionNull};
constinit std::atomic<MemExceptionHandler> failureHandler{nullptr};

void count(std::int32_t change) noexcept {
    blockCount.store(blockCount.load(kPlain) + change, kPlain);
}

[[noreturn]] void testForEver(int action) noexcept {
    for (volatile int tested = action;;)
        static_cast<void>(tested);
}

// Whether to ask the heap again.
bool shouldRetry() noexcept {
    const NoCancellation untilDecided;
    int action = failureAction.load(std::memory_order_acquire);  // with Mem_SetException()
    while (action == kMemExceptionCall)
        action = failureHandler.load(kPlain)();
    switch (action) {
        case kMemExceptionReport:
            std::fwrite(kOutOfMemory.data(), 1, kOutOfMemory.size(), stderr);
            [[fallthrough]];
        case kMemExceptionExit:
            std::exit(1);  // NOLINT(concurrency-mt-unsafe): the policy says so
        case kMemExceptionNull:
            return false;
        case kMemExceptionRetry:
            return true;
        default:
            testForEver(action);
    }
}

template <typename Request>
void* askHeap(Request request) noexcept {
    for (;;) {
        if (void* block = request()) return block;
        if (!shouldRetry()) return nullptr;
    }
}

template <typename Request>
void* takeBlock(Request request) noexcept {
    void* block = askHeap(request);
    if (block != nullptr) count(+1);
    return block;
}

void* allocate(std::uint32_t size) noexcept {
    if (size == 0) return nullptr;
    return takeBlock([size] { return std::malloc(size); });
}

void giveBack(void* block) noexcept {
    if (block == nullptr) return;
    count(-1);
    std::free(block);
}

}  // namespace

extern "C" {

int Mem_InitModule() noexcept {
    if (!isInitialised.load(kPlain)) {
        blockCount.store(0, kPlain);
        isInitialised.store(true, kPlain);
    }
    return 1;
}

void Mem_TermModule() noexcept {
    isInitialised.store(false, kPlain);
}

void Mem_SetException(int action, MemExceptionHandler handler) noexcept {
    // The handler first, and one that is no longer called stays: a thread whose allocation fails at
    // this moment finds one. Release: with shouldRetry().
    if (action == kMemExceptionCall) failureHandler.store(handler, kPlain);
    failureAction.store(action, std::memory_order_release);
}

int32_t Mem_outstandingBlocks() noexcept {
    return blockCount.load(kPlain);
}

void* Mem_malloc(uint32_t size) noexcept {
    return allocate(size);
}

void* Mem_calloc(uint32_t count, uint32_t size) noexcept {
    if (count * size == 0) return nullptr;
    return takeBlock([count, size] { return std::calloc(count, size); });
}

void* Mem_realloc(void* block, uint32_t size) noexcept {
    if (block == nullptr) return allocate(size);
    if (size == 0) {
        giveBack(block);
        return nullptr;
    }
    return askHeap([block, size] { return std::realloc(block, size); });
}

char* Mem_strdup(const char* text) noexcept {
    if (text == nullptr) return nullptr;
    const std::size_t length = std::strlen(text);
    if (length >= UINT32_MAX) return nullptr;
    void* copy = allocate(static_cast<std::uint32_t>(length + 1));
    return copy != nullptr ? static_cast<char*>(std::memcpy(copy, text, length + 1)) : nullptr;
}

void Mem_free(void* block) noexcept {
    giveBack(block);
}

}  // extern "C"

}  // namespace veltra
