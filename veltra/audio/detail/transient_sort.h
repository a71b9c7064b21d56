// SPDX-License-Identifier: MIT
// The orders of transients, and sorting and selecting by them.
#pragma once

#include "veltra/audio/transients.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>

namespace veltra::detail {

// Each order has a key, whose order it is first of all, and less(), which also tells apart what has
// the same key.
struct ByPos {
    using Next = void;                          // the order of transients with the same key
    static constexpr bool kKeysAreEven = true;  // spread evenly, as a rule
    static std::uint64_t key(const CTransient& transient) noexcept {
        return static_cast<std::uint64_t>(transient.pos) ^ (std::uint64_t{1} << 63U);
    }
    static bool less(const CTransient& one, const CTransient& other) noexcept {
        return one.pos < other.pos;
    }
};

struct ByEnergyAndPos {
    using Next = ByPos;
    static constexpr bool kKeysAreEven = false;
    // Made from the bits alone, so that no mode of the floating-point unit (flushed denormals)
    // changes an order. The zeros are equal; whatever is not a number comes last.
    static std::uint64_t key(const CTransient& transient) noexcept {
        constexpr std::uint32_t kSign = 0x80000000U, kInfinity = 0x7F800000U;
        const auto bits = std::bit_cast<std::uint32_t>(transient.Energy);
        const std::uint32_t magnitude = bits & ~kSign;
        if (magnitude > kInfinity) return 0xFFFFFFFFU;
        return (bits & kSign) != 0 ? kSign - magnitude : kSign + magnitude;
    }
    static bool less(const CTransient& one, const CTransient& other) noexcept {
        const std::uint64_t oneKey = key(one), otherKey = key(other);
        return oneKey < otherKey || (oneKey == otherKey && one.pos < other.pos);
    }
};

bool isSortedByPos(std::span<const CTransient> transients) noexcept;
bool isUniqueAndSortedByPos(std::span<const CTransient> transients) noexcept;

// Stable.
void sortByPos(std::span<CTransient> transients) noexcept;
void sortByEnergyAndPos(std::span<CTransient> transients) noexcept;

// Sort, and move what is kept to the front: the first transient at each position, or the `size`
// first of the order by energy and position. Return how many are kept; what lies behind them is
// unspecified.
std::size_t sortAndMakeUniquePos(std::span<CTransient> transients) noexcept;
std::size_t thinOutAndSortByPos(std::span<CTransient> transients, std::size_t size) noexcept;

// Moves the `count` first transients of the order by energy and position (of equal ones the first)
// to the front, in the order in which they are. What lies behind them is then unspecified.
// Requires `count` < size.
void gatherWeakest(std::span<CTransient> transients, std::size_t count) noexcept;

}  // namespace veltra::detail
