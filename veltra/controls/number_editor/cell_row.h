// SPDX-License-Identifier: MIT
// Cells in a row: where they lie, and which comes next for somebody who walks along them.
//
// Thread: any. Realtime-safe: yes, as far as the predicate is.
#pragma once

#include "veltra/export.h"
#include "veltra/ui/geometry.h"

#include <cstddef>
#include <optional>
#include <span>

namespace veltra {

// Moves the frames so that they follow one another from x = 0 on, in their order. Sizes and heights
// above the ground stay.
VELTRA_EXPORT void packFromLeft(std::span<Rect> frames) noexcept;

// The first of `count` cells after `from`, or before it, for which `canBe(index)` is true, beyond
// the ends at the other end. Nothing when the walk comes back to `from`.
template <typename Predicate>
std::optional<std::size_t> nextInRow(std::size_t from, bool forward, std::size_t count,
                                     Predicate canBe) {
    for (std::size_t steps = 1; steps < count; ++steps) {
        const std::size_t index = (from + (forward ? steps : count - steps)) % count;
        if (canBe(index)) return index;
    }
    return std::nullopt;
}

}  // namespace veltra
