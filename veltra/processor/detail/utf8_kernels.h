// SPDX-License-Identifier: MIT
// The walks over UTF-8 bytes that exist in one variant per instruction set, and the choice among
// them. A variant is built in its own file with its own flags; the plain one is the oracle of all.
#pragma once

#include "veltra/processor/detail/kernel_choice.h"

#include <cstddef>

namespace veltra {

struct Utf8Kernels {
    // Length of the leading run of ASCII bytes: stops at a NUL or a byte at or above 0x80.
    std::size_t (*asciiLength)(const char* text) noexcept;

    // The same, stopping after `limit` bytes too. What lies behind the byte that stops it need
    // not exist, whatever the limit.
    std::size_t (*asciiLengthWithin)(const char* text, std::size_t limit) noexcept;

    // What utf8_check answers; `text` is not null.
    bool (*check)(const char* text) noexcept;
};

namespace detail {
extern KernelChoice<const Utf8Kernels*> utf8KernelChoice;
}

// The variant in force.
// Thread: any. Realtime-safe: yes.
inline const Utf8Kernels& utf8Kernels() noexcept {
    return *detail::utf8KernelChoice.current();
}

}  // namespace veltra
