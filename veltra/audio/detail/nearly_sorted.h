// SPDX-License-Identifier: MIT
// Short and nearly sorted lists.
//
// A list that is sorted but for few outliers costs a look at each transient and moving it twice:
// the outliers are taken out, sorted by themselves, and merged in again.
#pragma once

#include "veltra/audio/detail/transient_sort.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <span>

namespace veltra::detail {

// A transient that was taken out, and how many of those that were not stood before it: what tells
// the order of equal ones.
struct Outlier : CTransient {
    std::uint32_t keptBefore;
};
static_assert(sizeof(Outlier) == 40);

// How many transients from the first on are in order.
template <typename Order>
std::size_t sortedLength(std::span<const CTransient> list) noexcept {
    std::size_t length = 1;
    while (length < list.size() && !Order::less(list[length], list[length - 1]))
        ++length;
    return length;
}

template <typename Order>
bool isStrictlyDescending(std::span<const CTransient> list) noexcept {
    std::size_t length = 1;
    while (length < list.size() && Order::less(list[length], list[length - 1]))
        ++length;
    return length == list.size();
}

// From one place to another, or in place.
template <typename Order, typename Record>
void insertionSort(const Record* from, Record* to, std::size_t count) noexcept {
    if (count > 0) to[0] = from[0];
    for (std::size_t index = 1; index < count; ++index) {
        if (from == to && !Order::less(from[index], to[index - 1])) continue;
        std::size_t place = index;
        const Record moved = from[index];
        for (; place > 0 && Order::less(moved, to[place - 1]); --place)
            to[place] = to[place - 1];
        to[place] = moved;
    }
}

// Among so many transients.
inline std::size_t mostOutliers(std::size_t count) noexcept {
    return count / 8 + 16;
}

// Marks the transients without which the list is sorted: not the fewest there are, but near. An
// element that is less than the last one kept is an outlier, or the last one is, when it fits the
// one before; when several in a row do not fit, those kept before them are, unless they are more.
// Answers how many there are; 0 when there are too many.
template <typename Order>
std::size_t markOutliers(std::span<const CTransient> list, unsigned char* marks) noexcept {
    constexpr std::size_t kRow = 4;
    constexpr std::size_t kNone = ~std::size_t{0};
    std::memset(marks, 0, list.size());
    std::size_t marked = 0, row = 0, last = 0, beforeLast = kNone;
    for (std::size_t index = 1; index < list.size(); ++index) {
        if (last == kNone || !Order::less(list[index], list[last])) {
            beforeLast = last;
            last = index;
            row = 0;
            continue;
        }
        if (++marked > mostOutliers(index)) return 0;
        if (row == 0 && beforeLast != kNone && !Order::less(list[index], list[beforeLast])) {
            marks[last] = 1;
            last = index;
            continue;
        }
        marks[index] = 1;
        ++row;
        if (row < kRow || !std::has_single_bit(row)) continue;

        const std::size_t first = index + 1 - row;
        const CTransient& greatest =
            *std::max_element(list.data() + first, list.data() + index + 1, Order::less);
        std::size_t kept = last, dropped = 0;
        for (; kept != kNone && dropped <= row; kept = kept == 0 ? kNone : kept - 1) {
            if (marks[kept] != 0) continue;
            if (!Order::less(greatest, list[kept])) break;
            ++dropped;
        }
        if (dropped > row) continue;  // then it is the row that is out of place
        for (; last != kept; last = last == 0 ? kNone : last - 1)
            marks[last] = 1;
        std::memset(marks + first, 0, row);
        marked += dropped - row;
        beforeLast = kNone;
        row = 0;
        index = first - 1;
    }
    return marked <= mostOutliers(list.size()) ? marked : 0;
}

// Sorts the list when it is nearly sorted; otherwise answers false and leaves it as it is.
// `scratch` has room for as many transients as the list; `sortOutliers` sorts (outliers, room for
// as many, count).
template <typename Order, typename SortOutliers>
bool sortNearlySorted(std::span<CTransient> list, void* scratch,
                      SortOutliers sortOutliers) noexcept {
    constexpr std::size_t kLeast = 128;  // from here on marks and outliers fit the scratch
    const std::size_t size = list.size();
    if (size < kLeast) return false;
    auto* const marks = static_cast<unsigned char*>(scratch);
    const std::size_t count = markOutliers<Order>(list, marks);
    if (count == 0) return false;

    auto* const outliers = reinterpret_cast<Outlier*>(marks + (size / 8 + 1) * 8);
    CTransient* const records = list.data();
    std::size_t kept = 0, taken = 0;
    for (std::size_t index = 0; index < size;) {
        const void* const found = std::memchr(marks + index, 1, size - index);
        const std::size_t end =
            found == nullptr
                ? size
                : static_cast<std::size_t>(static_cast<const unsigned char*>(found) - marks);
        if (kept != index)
            std::memmove(static_cast<void*>(records + kept), records + index,
                         (end - index) * sizeof(CTransient));
        kept += end - index;
        if (end < size) outliers[taken++] = {records[end], static_cast<std::uint32_t>(kept)};
        index = end + 1;
    }
    sortOutliers(outliers, outliers + count, count);

    std::size_t out = size;
    while (taken > 0) {
        const Outlier& outlier = outliers[--taken];
        std::size_t first = kept;
        while (first > 0 &&
               (Order::less(outlier, records[first - 1]) ||
                (first > outlier.keptBefore && !Order::less(records[first - 1], outlier))))
            --first;
        out -= kept - first;
        std::memmove(static_cast<void*>(records + out), records + first,
                     (kept - first) * sizeof(CTransient));
        kept = first;
        records[--out] = outlier;
    }
    return true;
}

}  // namespace veltra::detail
