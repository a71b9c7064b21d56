// SPDX-License-Identifier: MIT
#include "veltra/audio/detail/transient_sort.h"

#include "veltra/audio/detail/distribution_sort.h"

#include <algorithm>

namespace veltra::detail {

namespace {

// Four transients to a branch.
template <typename Compare>
bool isInOrder(std::span<const CTransient> list, Compare isRight) noexcept {
    if (list.empty()) return true;
    std::int64_t previous = list[0].pos;
    std::size_t index = 1;
    for (; index + 4 <= list.size(); index += 4) {
        const std::int64_t first = list[index].pos, second = list[index + 1].pos;
        const std::int64_t third = list[index + 2].pos, fourth = list[index + 3].pos;
        const bool areRight[] = {isRight(previous, first), isRight(first, second),
                                 isRight(second, third), isRight(third, fourth)};
        if (!areRight[0] || !areRight[1] || !areRight[2] || !areRight[3]) return false;
        previous = fourth;
    }
    for (; index < list.size(); ++index) {
        if (!isRight(list[index - 1].pos, list[index].pos)) return false;
    }
    return true;
}

}  // namespace

bool isSortedByPos(std::span<const CTransient> list) noexcept {
    return isInOrder(list, [](std::int64_t one, std::int64_t next) { return one <= next; });
}

bool isUniqueAndSortedByPos(std::span<const CTransient> list) noexcept {
    return isInOrder(list, [](std::int64_t one, std::int64_t next) { return one < next; });
}

void sortByPos(std::span<CTransient> list) noexcept {
    sortTransients<ByPos>(list);
}

void sortByEnergyAndPos(std::span<CTransient> list) noexcept {
    sortTransients<ByEnergyAndPos>(list);
}

std::size_t sortAndMakeUniquePos(std::span<CTransient> list) noexcept {
    sortByPos(list);
    const auto end = std::unique(
        list.begin(), list.end(),
        [](const CTransient& one, const CTransient& next) { return one.pos == next.pos; });
    return static_cast<std::size_t>(end - list.begin());
}

std::size_t thinOutAndSortByPos(std::span<CTransient> list, std::size_t size) noexcept {
    if (list.size() > size) {
        gatherWeakest(list, size);
        list = list.first(size);
    }
    sortByPos(list);
    return list.size();
}

}  // namespace veltra::detail
