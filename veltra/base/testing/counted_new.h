// SPDX-License-Identifier: MIT
// Replaces operator new and delete of the program: one of its sources includes this. The thread
// sanitizer brings its own, so such a source is not part of its build.
#pragma once

#include "veltra/base/testing/prelude.h"

#include <new>

namespace veltra::testing {

inline std::atomic<int> allocated{0}, freed{0};
inline std::atomic<bool> memoryIsOut{false};
inline std::function<void()> whileFreeing;  // called once, in the next operator delete

[[gnu::noinline]] inline void countedFree(void* block) noexcept {
    if (block != nullptr) ++freed;
    if (whileFreeing) std::exchange(whileFreeing, nullptr)();
    std::free(block);
}

}  // namespace veltra::testing

// NOLINTBEGIN(misc-definitions-in-headers): one source alone includes them
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    ++veltra::testing::allocated;
    return veltra::testing::memoryIsOut ? nullptr : std::malloc(size);
}
void* operator new(std::size_t size) {
    void* block = operator new(size, std::nothrow);
    return block != nullptr ? block : throw std::bad_alloc();
}
void operator delete(void* block) noexcept {
    veltra::testing::countedFree(block);
}
void operator delete(void* block, std::size_t) noexcept {
    veltra::testing::countedFree(block);
}
// NOLINTEND(misc-definitions-in-headers)
