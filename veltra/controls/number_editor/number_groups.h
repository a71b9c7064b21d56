// SPDX-License-Identifier: MIT
// One number as a row of groups that carry into one another, such as bars, beats and ticks:
//
//   const NumberGroups position({{0, 1}, {4, 1}, {960, 0}});
//   position.split(4215);                                        // 2, 1, 375
//   position.join(std::vector<std::int32_t>{1, 5, 0});           // 3840, the same as 2, 1, 0
//
// Thread: any. Realtime-safe: no.
#pragma once

#include "veltra/export.h"

#include <cstdint>
#include <span>
#include <utility>
#include <vector>

namespace veltra {

// What one group counts.
struct NumberGroup {
    // How many values it takes before it carries into the group to its left. Does not count for the
    // first group, which has no limit; below 1 counts as 1.
    std::int32_t size = 1;
    std::int32_t first = 0;  // its lowest value: 1 where people count from one
};

class VELTRA_EXPORT NumberGroups {
public:
    // The groups from the left: each counts the overflow of the one to its right.
    explicit NumberGroups(std::vector<NumberGroup> groups) : m_groups(std::move(groups)) {}

    // The values of the groups. A number below 0 goes below `first` in the first group alone. What
    // does not fit there is cut to 32 bits' limits.
    std::vector<std::int32_t> split(std::int64_t number) const;

    // The reverse, also for values outside of their groups: those carry. Missing values count as
    // the lowest, values too many are passed over. Kept within 64 bits.
    std::int64_t join(std::span<const std::int32_t> values) const noexcept;

private:
    std::vector<NumberGroup> m_groups;
};

}  // namespace veltra
