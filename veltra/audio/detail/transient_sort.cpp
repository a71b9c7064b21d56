// SPDX-License-Identifier: MIT
// Sorting transients by distribution.
//
// The keys of a list are spread over about as many buckets as there are transients, so that nearly
// every bucket holds one or two, and an insertion sort over the whole puts the rest right. A list
// that does not fit the caches is first split into parts that do. A bucket that stays too full,
// since the keys are not spread evenly, is sorted by itself within the range of its own keys: each
// round takes at least five bits off the range, so that the worst list costs a dozen passes.
#include "veltra/audio/detail/transient_sort.h"

#include "veltra/audio/detail/nearly_sorted.h"
#include "veltra/platform/work_memory.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>

namespace veltra::detail {

namespace {

// Measured: parts of 2048 records keep the places that a split writes to few enough for the caches
// to hold, and fit the second-level cache themselves.
constexpr std::size_t kInsertion = 20;    // records that are sorted by insertion
constexpr std::size_t kPart = 4096;       // records that are distributed to single ones at most
constexpr std::size_t kSplitPart = 2048;  // records in a part of a longer list, on average
constexpr unsigned kLeastSplitBits = 5, kMostSplitBits = 11;
constexpr std::size_t kBuckets = 2 * kPart;

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

// The bucket of a key is its place in the range: right for keys that are spread evenly.
class EvenSpread {
public:
    EvenSpread(KeyRange range, unsigned bits) noexcept
        : m_low(range.low), m_bits(std::min(bits, range.bits())), m_shift(range.bits() - m_bits) {}

    std::size_t buckets() const noexcept { return std::size_t{1} << m_bits; }
    std::size_t of(std::uint64_t key) const noexcept {
        return static_cast<std::size_t>((key - m_low) >> m_shift);
    }

private:
    std::uint64_t m_low;
    unsigned m_bits, m_shift;
};

// The bucket of a key is the share of the keys below it, as a sample has it: a line in each of 256
// segments of the sample's range. Right also for the keys of floats, most of which lie in few
// octaves, and made without a look at every record.
class SampledSpread {
public:
    template <typename Order, typename Record>
    static SampledSpread of(const Record* records, std::size_t count, unsigned bits) noexcept {
        std::array<std::uint64_t, kSamples> keys;
        for (std::size_t sample = 0; sample < kSamples; ++sample)
            keys[sample] = Order::key(
                records[static_cast<std::size_t>(std::uint64_t{sample} * count / kSamples)]);
        return SampledSpread(keys, bits);
    }

    // Too narrow for segments: then the range itself will do.
    bool isNarrow() const noexcept { return m_range.bits() < kSegmentBits + kFractionBits; }
    std::size_t buckets() const noexcept { return std::size_t{1} << m_bits; }
    std::size_t of(std::uint64_t key) const noexcept {
        const std::uint32_t at = place(std::clamp(key, m_range.low, m_range.high));
        const auto [base, rise] = m_lines[at >> kFractionBits];
        return base + ((rise * (at & kFractionMask)) >> kFractionBits);
    }

private:
    static constexpr unsigned kSegmentBits = 8, kFractionBits = 16;
    static constexpr std::uint32_t kFractionMask = (1U << kFractionBits) - 1;
    static constexpr std::size_t kSegments = 1U << kSegmentBits;
    static constexpr std::uint32_t kSamples = 512;

    struct Line {
        std::uint32_t base, rise;
    };

    SampledSpread(const std::array<std::uint64_t, kSamples>& keys, unsigned bits) noexcept
        : m_bits(bits) {
        for (const std::uint64_t key : keys)
            m_range.add(key);
        m_shift = m_range.bits() - std::min(m_range.bits(), kSegmentBits + kFractionBits);
        std::array<std::uint32_t, kSegments> sampled{};
        for (const std::uint64_t key : keys)
            ++sampled[place(key) >> kFractionBits];
        const std::uint32_t last = (1U << bits) - 1;
        std::uint32_t below = 0;
        for (std::size_t segment = 0; segment < kSegments; ++segment) {
            const auto base = below * last / kSamples;
            below += sampled[segment];
            m_lines[segment] = {base, below * last / kSamples - base};
        }
    }

    std::uint32_t place(std::uint64_t key) const noexcept {
        return static_cast<std::uint32_t>((key - m_range.low) >> m_shift);
    }

    KeyRange m_range;
    unsigned m_bits, m_shift;
    std::array<Line, kSegments> m_lines;
};

template <typename Order, typename Record>
class Sorter {
public:
    explicit Sorter(Notes& notes) noexcept : m_notes(notes) {}

    // Sorts `count` records with `scratch`, which has room for as many.
    void sort(Record* records, Record* scratch, std::size_t count) noexcept {
        if (count <= kInsertion) return insertionSort<Order>(records, records, count);
        const bool isPart = count <= kPart;
        if (isPart && Order::kKeysAreEven)
            return sortRange(records, scratch, count, rangeOf<Order>(records, count));
        const auto spread =
            SampledSpread::of<Order>(records, count, isPart ? partBits(count) : splitBits(count));
        if (spread.isNarrow())
            return sortRange(records, scratch, count, rangeOf<Order>(records, count));
        if (!isPart) return split(records, scratch, count, spread);
        scatter(records, scratch, count, spread);
        insertionSort<Order>(scratch, records, count);
    }

private:
    static unsigned partBits(std::size_t count) noexcept {
        return static_cast<unsigned>(std::bit_width(count - 1)) + 1;
    }
    static unsigned splitBits(std::size_t count) noexcept {
        return std::clamp(static_cast<unsigned>(std::bit_width((count - 1) / kSplitPart)),
                          kLeastSplitBits, kMostSplitBits);
    }

    void sortRange(Record* records, Record* scratch, std::size_t count, KeyRange range) noexcept {
        if (range.bits() == 0) return sortEqualKeys(records, scratch, count);
        if (count > kPart)
            return split(records, scratch, count, EvenSpread(range, splitBits(count)));
        scatter(records, scratch, count, EvenSpread(range, partBits(count)));
        insertionSort<Order>(scratch, records, count);
    }

    // What is left to tell records apart whose keys are equal.
    void sortEqualKeys(Record* records, Record* scratch, std::size_t count) noexcept {
        if constexpr (!std::is_void_v<typename Order::Next>)
            Sorter<typename Order::Next, Record>(m_notes).sort(records, scratch, count);
    }

    // A long list: into parts in `scratch`, and each part back again.
    template <typename Spread>
    void split(Record* records, Record* scratch, std::size_t count, const Spread& spread) noexcept {
        distribute(records, scratch, count, spread);
        const auto sortBack = [&](std::size_t first, std::size_t size, KeyRange range) {
            if (size <= kPart && range.bits() > 0) {
                scatter(scratch + first, records + first, size, EvenSpread(range, partBits(size)));
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
    template <typename Spread>
    void scatter(Record* from, Record* to, std::size_t count, const Spread& spread) noexcept {
        if (distribute(from, to, count, spread) > kInsertion) {
            const auto sortFull = [&](std::size_t first, std::size_t size, KeyRange range) {
                if (size > kInsertion) sortRange(to + first, from + first, size, range);
            };
            forEachBucket(to, count, spread, sortFull);
        }
    }

    // Answers how many records the fullest bucket has.
    template <typename Spread>
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
    template <typename Spread, typename Visit>
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
    Sorter<Order, CTransient>(notes).sort(records, static_cast<CTransient*>(scratch), count);
}

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

}  // namespace veltra::detail
