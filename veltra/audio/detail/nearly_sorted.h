// SPDX-License-Identifier: MIT
// Short and nearly sorted lists.
//
// Two kinds of disorder cost less than a sort. Records that are a few places away from where they
// belong are put right by insertion. Single records that are far away are outliers: they are taken
// out, sorted by themselves, and merged in again. Both attempts give up after a number of steps
// that is proportional to the number of records they have seen.
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

// Sorts by insertion, from the record `first` on, as long as records move few places on average.
// Otherwise answers false; the list then has the same records, equal ones in the same order.
template <typename Order>
bool sortByShortMoves(std::span<CTransient> list, std::size_t first) noexcept {
    constexpr std::size_t kFew = 2, kAtOnce = 32;
    std::size_t moves = 0;
    for (std::size_t index = first; index < list.size(); ++index) {
        if (!Order::less(list[index], list[index - 1])) continue;
        const CTransient moved = list[index];
        std::size_t place = index;
        do {
            list[place] = list[place - 1];
            --place;
        } while (place > 0 && Order::less(moved, list[place - 1]));
        list[place] = moved;
        moves += index - place;
        if (moves > kFew * (index - first) + kAtOnce) return false;
    }
    return true;
}

// The records that are kept in their places, as runs of neighbours: a stack, the last one on top.
class KeptRecords {
public:
    struct Run {
        std::uint32_t begin, end;
    };

    explicit KeptRecords(Run* memory) noexcept : m_runs(memory) {}

    std::span<const Run> runs() const noexcept { return {m_runs, m_runCount}; }
    std::size_t count() const noexcept { return m_count; }
    std::size_t last() const noexcept { return m_runs[m_runCount - 1].end - 1; }

    // The one that has `depth` others above it.
    std::size_t under(std::size_t depth) const noexcept {
        const Run* run = m_runs + m_runCount - 1;
        for (; depth >= run->end - run->begin; --run)
            depth -= run->end - run->begin;
        return run->end - 1 - depth;
    }
    void push(std::size_t begin, std::size_t end) noexcept {
        const Run run = {static_cast<std::uint32_t>(begin), static_cast<std::uint32_t>(end)};
        if (m_runCount == 0 || m_runs[m_runCount - 1].end != run.begin)
            m_runs[m_runCount++] = run;
        else
            m_runs[m_runCount - 1].end = run.end;
        m_count += end - begin;
    }
    void pop() noexcept {
        Run& top = m_runs[m_runCount - 1];
        if (--top.end == top.begin) --m_runCount;
        --m_count;
    }

private:
    Run* m_runs;
    std::size_t m_runCount = 0, m_count = 0;
};

// Among so many transients.
constexpr std::size_t mostOutliers(std::size_t count) noexcept {
    return count / 8 + 16;
}

// Keeps nearly as many records as can be kept in sorted order; false when too many are outliers.
//
// A record that is less than the last one kept is an outlier. There are two exceptions, for then
// it is the records kept before it that are out of place:
// - Without the last one kept it fits: then that one is the outlier, and this one is kept.
// - It ends a row of outliers, and the kept records that are greater than all of the row are no
//   more than the row: then those are outliers, and the row is looked at again.
template <typename Order>
bool keepSorted(std::span<const CTransient> list, KeptRecords& kept) noexcept {
    constexpr std::size_t kLeastRow = 4;
    std::size_t row = 0, seenAgain = 0;
    for (std::size_t index = 0; index < list.size(); ++index) {
        if (kept.count() == 0 || !Order::less(list[index], list[kept.last()])) {
            const std::size_t begin = index;
            while (index + 1 < list.size() && !Order::less(list[index + 1], list[index]))
                ++index;
            kept.push(begin, index + 1);
            row = 0;
            continue;
        }
        if (index + 1 - kept.count() > mostOutliers(index)) return false;
        if (row == 0) {
            const std::size_t last = kept.last();
            kept.pop();
            const bool fits = kept.count() > 0 && !Order::less(list[index], list[kept.last()]);
            const std::size_t chosen = fits ? index : last;
            kept.push(chosen, chosen + 1);
            if (fits) continue;
        }
        ++row;
        if (row < kLeastRow || !std::has_single_bit(row)) continue;  // few looks at a long row

        const CTransient* const end = list.data() + index + 1;
        const CTransient& greatest = *std::max_element(end - row, end, Order::less);
        if (kept.count() > row && Order::less(greatest, list[kept.under(row)])) continue;
        while (kept.count() > 0 && Order::less(greatest, list[kept.last()]))
            kept.pop();
        seenAgain += row;
        if (seenAgain > list.size()) return false;
        index -= row;
        row = 0;
    }
    return list.size() - kept.count() <= mostOutliers(list.size());
}

// Sorts the list when it is nearly sorted; otherwise answers false and leaves it as it is.
// `scratch` has room for as many transients as the list; `sortOutliers` sorts (outliers, room for
// as many, count).
template <typename Order, typename SortOutliers>
bool sortNearlySorted(std::span<CTransient> list, void* scratch,
                      SortOutliers sortOutliers) noexcept {
    constexpr std::size_t kLeast = 128;  // from here on runs and outliers fit the scratch
    const std::size_t size = list.size();
    if (size < kLeast) return false;
    KeptRecords kept(static_cast<KeptRecords::Run*>(scratch));
    if (!keepSorted<Order>(list, kept)) return false;

    void* const behindRuns = static_cast<KeptRecords::Run*>(scratch) + mostOutliers(size) + 2;
    auto* const outliers = static_cast<Outlier*>(behindRuns);
    CTransient* const records = list.data();
    std::size_t keptCount = 0, taken = 0, index = 0;
    const auto takeOut = [&](std::size_t end) {
        for (; index < end; ++index)
            outliers[taken++] = {records[index], static_cast<std::uint32_t>(keptCount)};
    };
    for (const auto& [begin, end] : kept.runs()) {
        takeOut(begin);
        if (keptCount != begin)
            std::memmove(static_cast<void*>(records + keptCount), records + begin,
                         (end - begin) * sizeof(CTransient));
        keptCount += end - begin;
        index = end;
    }
    takeOut(size);
    sortOutliers(outliers, outliers + taken, taken);

    std::size_t out = size;
    while (taken > 0) {
        const Outlier& outlier = outliers[--taken];
        std::size_t first = keptCount;
        while (first > 0 &&
               (Order::less(outlier, records[first - 1]) ||
                (first > outlier.keptBefore && !Order::less(records[first - 1], outlier))))
            --first;
        out -= keptCount - first;
        std::memmove(static_cast<void*>(records + out), records + first,
                     (keptCount - first) * sizeof(CTransient));
        keptCount = first;
        records[--out] = outlier;
    }
    return true;
}

}  // namespace veltra::detail
