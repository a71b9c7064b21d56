// SPDX-License-Identifier: MIT
// Finding the weakest transients without sorting: the rank in question is narrowed down digit by
// digit, by counting, until the transients that may have it are few enough to look at.
#include "veltra/audio/detail/transient_sort.h"
#include "veltra/platform/work_memory.h"

#include <algorithm>
#include <tuple>

namespace veltra::detail {

namespace {

constexpr std::size_t kManyRecords = std::size_t{1} << 17U;  // worth 65536 counters
constexpr unsigned kWideDigit = 16, kNarrowDigit = 8;
constexpr std::size_t kBytesPerDigit = 16;
constexpr unsigned kEnergyBits = 32, kKeyBits = 96;

// The order by energy and position, as a number of 96 bits.
struct Key {
    std::uint32_t energy;
    std::uint64_t position;

    static Key of(const CTransient& transient) noexcept {
        return {static_cast<std::uint32_t>(ByEnergyAndPos::key(transient)), ByPos::key(transient)};
    }
    bool operator<(const Key& other) const noexcept {
        return std::tie(energy, position) < std::tie(other.energy, other.position);
    }

    // `width` bits from bit `offset` on, counted from the top; no digit lies in both fields.
    std::size_t digit(unsigned offset, unsigned width) const noexcept {
        const std::uint64_t mask = (std::uint64_t{1} << width) - 1;
        const std::uint64_t digit = offset < kEnergyBits ? energy >> (kEnergyBits - offset - width)
                                                         : position >> (kKeyBits - offset - width);
        return static_cast<std::size_t>(digit & mask);
    }
    void setDigit(unsigned offset, unsigned width, std::uint64_t digit) noexcept {
        if (offset < kEnergyBits) {
            energy |= static_cast<std::uint32_t>(digit << (kEnergyBits - offset - width));
        } else {
            position |= digit << (kKeyBits - offset - width);
        }
    }
    bool hasPrefixOf(const Key& other, unsigned length) const noexcept {
        if (length == 0) return true;
        if (length <= kEnergyBits) return (energy ^ other.energy) >> (kEnergyBits - length) == 0;
        return energy == other.energy && (position ^ other.position) >> (kKeyBits - length) == 0;
    }
};

struct Threshold {
    Key key;
    std::size_t equals;  // how many of those equal to the key are among the chosen
};

// `memory`, of kBytesPerDigit for each value of a digit, holds a counter for each value, and later
// the keys to look at.
Threshold findThreshold(std::span<const CTransient> list, std::size_t rank, void* memory,
                        unsigned width) noexcept {
    const std::span counts(static_cast<std::size_t*>(memory), std::size_t{1} << width);
    const std::span keys(static_cast<Key*>(memory), (kBytesPerDigit << width) / sizeof(Key));
    Threshold threshold{{0, 0}, rank};
    for (unsigned offset = 0; offset < kKeyBits; offset += width) {
        std::fill(counts.begin(), counts.end(), std::size_t{0});
        for (const CTransient& transient : list) {
            const Key key = Key::of(transient);
            if (key.hasPrefixOf(threshold.key, offset)) ++counts[key.digit(offset, width)];
        }
        std::size_t digit = 0;
        for (; counts[digit] < threshold.equals; ++digit)
            threshold.equals -= counts[digit];
        threshold.key.setDigit(offset, width, digit);
        if (counts[digit] > keys.size()) continue;

        std::size_t found = 0;
        for (const CTransient& transient : list) {
            const Key key = Key::of(transient);
            if (key.hasPrefixOf(threshold.key, offset + width)) keys[found++] = key;
        }
        const auto wanted = keys.begin() + static_cast<std::ptrdiff_t>(threshold.equals - 1);
        std::nth_element(keys.begin(), wanted, keys.begin() + static_cast<std::ptrdiff_t>(found));
        threshold.key = *wanted;
        threshold.equals -= static_cast<std::size_t>(std::count_if(
            keys.begin(), wanted, [&](const Key& key) { return key < threshold.key; }));
        break;
    }
    return threshold;
}

}  // namespace

void gatherWeakest(std::span<CTransient> list, std::size_t count) noexcept {
    if (count == 0) return;
    alignas(Key) std::byte local[kBytesPerDigit << kNarrowDigit];
    const bool isMany = list.size() >= kManyRecords;
    const WorkMemory memory(isMany ? kBytesPerDigit << kWideDigit : 1);
    const bool isWide = isMany && memory.get() != nullptr;
    Threshold threshold = findThreshold(list, count, isWide ? memory.get() : local,
                                        isWide ? kWideDigit : kNarrowDigit);
    std::size_t kept = 0;
    for (std::size_t index = 0; kept < count; ++index) {
        const Key key = Key::of(list[index]);
        const bool isEqual = !(threshold.key < key) && !(key < threshold.key);
        if (isEqual ? threshold.equals == 0 : threshold.key < key) continue;
        threshold.equals -= isEqual ? 1 : 0;
        list[kept++] = list[index];
    }
}

}  // namespace veltra::detail
