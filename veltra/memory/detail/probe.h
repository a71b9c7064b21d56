// SPDX-License-Identifier: MIT
// Whether memory is to be had, found out by asking for it.
#pragma once

#include <cstddef>
#include <cstdlib>

namespace veltra::detail {

// The block is volatile because a compiler may otherwise leave out an allocation that nobody uses,
// and find that memory is never short. It is not touched: it takes address space, no pages.
// Thread: any. Realtime-safe: no.
inline bool canAllocate(std::size_t size) noexcept {
    void* volatile block = std::malloc(size);
    if (block == nullptr) return false;
    std::free(block);
    return true;
}

}  // namespace veltra::detail
