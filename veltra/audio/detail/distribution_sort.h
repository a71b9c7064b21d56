// SPDX-License-Identifier: MIT
// Sorting transients by distribution, in O(n log n) steps for any list.
//
// The range of a list's keys is cut into a few buckets for each transient, so that nearly every
// bucket holds one or two, and an insertion sort over the whole puts the rest right. A list that
// does not fit the caches is first split into parts that do. A bucket that stays too full, since
// the keys are not spread evenly, is sorted by itself within the range of its own keys: each round
// takes at least five bits off the range, so that the worst list costs a dozen passes.
#pragma once

#include "veltra/audio/detail/nearly_sorted.h"
#include "veltra/audio/detail/transient_sort.h"
#include "veltra/platform/work_memory.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <limits>
#include <span>
#include <type_traits>

namespace veltra::detail {

// Measured: parts of 2048 records keep the places that a split writes to few enough for the caches
// to hold, and fit the second-level cache themselves.
inline constexpr std::size_t kInsertion = 20;  // records that are sorted by insertion
inline constexpr std::size_t kPart = 4096;  // records that are distributed to single ones at most
inline constexpr std::size_t kSplitPart = 2048;  // records in a part of a longer list, on average
inline constexpr unsigned kLeastSplitBits = 5, kMostSplitBits = 11;
inline constexpr unsigned kMostPartBits = 13;
inline constexpr std::size_t kBuckets = std::size_t{1} << kMostPartBits;

struct Notes {
    std::uint32_t counts[kBuckets];  // records in each bucket, then where its next one goes
    std::uint16_t buckets[kPart];    // of each record
};

template <typename Record>
void copyRecords(const Record* from, Record* to, std::size_t count) noexcept {
    std::memcpy(static_cast<void*>(to), from, count * sizeof(Record));
}

struct KeyRange {
    std::uint64_t low = std::numeric_limits<std::uint64_t>::max(), high = 0;

    void add(std::uint64_t key) noexcept {
        low = std::min(low, key);
        high = std::max(high, key);
    }
    unsigned bits() const noexcept { return static_cast<unsigned>(std::bit_width(high - low)); }
};

template <typename Order, typename Record>
KeyRange rangeOf(const Record* records, std::size_t count) noexcept {
    KeyRange range;
    for (std::size_t index = 0; index < count; ++index)
        range.add(Order::key(records[index]));
    return range;
}

// The bucket of a key is its place in the range.
class Spread {
public:
    Spread(KeyRange range, unsigned bits) noexcept
        : m_low(range.low), m_bits(std::min(bits, range.bits())), m_shift(range.bits() - m_bits) {}

    std::size_t buckets() const noexcept { return std::size_t{1} << m_bits; }
    std::size_t of(std::uint64_t key) const noexcept {
        return static_cast<std::size_t>((key - m_low) >> m_shift);
    }

private:
    std::uint64_t m_low;
    unsigned m_bits, m_shift;
};

template <typename Order, typename Record>
class Sorter {
public:
    explicit Sorter(Notes& notes) noexcept : m_notes(notes) {}

    // Sorts `count` records with `scratch`, which has room for as many.
    void sort(Record* records, Record* scratch, std::size_t count) noexcept {
        if (count <= kInsertion) return insertionSort<Order>(records, records, count);
        sortRange(records, scratch, count, rangeOf<Order>(records, count));
    }

private:
    // About three buckets for each record; about six where the keys crowd in a part of the range,
    // as those of floats do: most lie in few octaves.
    static unsigned partBits(std::size_t count) noexcept {
        const unsigned more = Order::kKeysAreEven ? 1 : 2;
        return std::min(static_cast<unsigned>(std::bit_width(count - 1)) + more, kMostPartBits);
    }
    static unsigned splitBits(std::size_t count) noexcept {
        return std::clamp(static_cast<unsigned>(std::bit_width((count - 1) / kSplitPart)),
                          kLeastSplitBits, kMostSplitBits);
    }

    void sortRange(Record* records, Record* scratch, std::size_t count, KeyRange range) noexcept {
        if (range.bits() == 0) return sortEqualKeys(records, scratch, count);
        if (count > kPart) return split(records, scratch, count, Spread(range, splitBits(count)));
        scatter(records, scratch, count, Spread(range, partBits(count)));
        insertionSort<Order>(scratch, records, count);
    }

    // What is left to tell records apart whose keys are equal.
    void sortEqualKeys(Record* records, Record* scratch, std::size_t count) noexcept {
        if constexpr (!std::is_void_v<typename Order::Next>)
            Sorter<typename Order::Next, Record>(m_notes).sort(records, scratch, count);
    }

    // A long list: into parts in `scratch`, and each part back again.
    void split(Record* records, Record* scratch, std::size_t count, const Spread& spread) noexcept {
        distribute(records, scratch, count, spread);
        const auto sortBack = [&](std::size_t first, std::size_t size, KeyRange range) {
            if (size <= kPart && range.bits() > 0) {
                scatter(scratch + first, records + first, size, Spread(range, partBits(size)));
                insertionSort<Order>(records + first, records + first, size);
            } else {
                copyRecords(scratch + first, records + first, size);
                sortRange(records + first, scratch + first, size, range);
            }
        };
        forEachBucket(scratch, count, spread, sortBack);
    }

    // Brings at most kPart records from one place to the other, so nearly sorted that an insertion
    // sort is all that is missing.
    void scatter(Record* from, Record* to, std::size_t count, const Spread& spread) noexcept {
        if (distribute(from, to, count, spread) > kInsertion) {
            const auto sortFull = [&](std::size_t first, std::size_t size, KeyRange range) {
                if (size > kInsertion) sortRange(to + first, from + first, size, range);
            };
            forEachBucket(to, count, spread, sortFull);
        }
    }

    // Answers how many records the fullest bucket has.
    std::size_t distribute(const Record* from, Record* to, std::size_t count,
                           const Spread& spread) noexcept {
        const std::span counts(m_notes.counts, spread.buckets());
        std::fill(counts.begin(), counts.end(), 0U);
        const bool isPart = count <= kPart;
        for (std::size_t index = 0; index < count; ++index) {
            const std::size_t bucket = spread.of(Order::key(from[index]));
            ++counts[bucket];
            if (isPart) m_notes.buckets[index] = static_cast<std::uint16_t>(bucket);
        }
        std::uint32_t before = 0, fullest = 0;
        for (std::uint32_t& bucket : counts) {
            const std::uint32_t size = bucket;
            fullest = std::max(fullest, size);
            bucket = before;
            before += size;
        }
        for (std::size_t index = 0; index < count; ++index) {
            const std::size_t bucket =
                isPart ? m_notes.buckets[index] : spread.of(Order::key(from[index]));
            to[counts[bucket]++] = from[index];
        }
        return fullest;
    }

    // Finds the buckets again by their records: the counts do not outlive a bucket's own sort.
    template <typename Visit>
    static void forEachBucket(const Record* records, std::size_t count, const Spread& spread,
                              Visit visit) noexcept {
        for (std::size_t first = 0, end = 0; first < count; first = end) {
            KeyRange range;
            const std::size_t bucket = spread.of(Order::key(records[first]));
            for (; end < count; ++end) {
                const std::uint64_t key = Order::key(records[end]);
                if (spread.of(key) != bucket) break;
                range.add(key);
            }
            visit(first, end - first, range);
        }
    }

    Notes& m_notes;
};

template <typename Order>
void sortTransients(std::span<CTransient> list) noexcept {
    CTransient* const records = list.data();
    const std::size_t count = list.size();
    if (count <= kInsertion) return insertionSort<Order>(records, records, count);
    const std::size_t sorted = sortedLength<Order>(list);
    if (sorted == count) return;
    if (sorted == 1 && isStrictlyDescending<Order>(list))
        return std::reverse(list.begin(), list.end());

    const WorkMemory memory(sizeof(Notes) + count * sizeof(CTransient));
    if (memory.get() == nullptr || count > std::numeric_limits<std::uint32_t>::max())
        return std::stable_sort(list.begin(), list.end(), Order::less);
    auto& notes = *static_cast<Notes*>(memory.get());
    void* const scratch = &notes + 1;

    const auto sortOutliers = [&notes](Outlier* outliers, Outlier* room, std::size_t size) {
        Sorter<Order, Outlier>(notes).sort(outliers, room, size);
    };
    if (sortNearlySorted<Order>(list, scratch, sortOutliers)) return;
    if (sortByShortMoves<Order>(list, sorted)) return;
    Sorter<Order, CTransient>(notes).sort(records, static_cast<CTransient*>(scratch), count);
}

}  // namespace veltra::detail
