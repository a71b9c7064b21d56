// SPDX-License-Identifier: MIT
// Audio in memory. Every large block of this host goes through the guarded allocator, so that one
// policy says what happens when there is none.
#pragma once

#include "veltra/memory/guarded_allocator.h"

#include <cstddef>
#include <cstdint>
#include <memory>

namespace veltra::survivor {

struct GiveBack {
    void operator()(void* block) const noexcept { Mem_free(block); }
};

template <typename Element>
using Block = std::unique_ptr<Element[], GiveBack>;

using Samples = Block<float>;

// Null when memory is out, or for more than the guarded allocator's 4 GiB.
template <typename Element>
Block<Element> takeBlock(std::size_t count) noexcept {
    if (count > UINT32_MAX / sizeof(Element)) return nullptr;
    return Block<Element>(
        static_cast<Element*>(Mem_malloc(static_cast<std::uint32_t>(count * sizeof(Element)))));
}

// What was given back at once.
struct Dropped {
    std::size_t count = 0;
    std::size_t bytes = 0;
};

}  // namespace veltra::survivor
