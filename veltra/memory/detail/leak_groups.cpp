// SPDX-License-Identifier: MIT
#include "veltra/memory/detail/leak_groups.h"

#include <limits>
#include <utility>

namespace veltra::detail {

namespace {

using Before = bool (*)(const LeakRecord& one, const LeakRecord& other) noexcept;

bool hasLesserStack(const LeakRecord& one, const LeakRecord& other) noexcept {
    return one.returnAddresses < other.returnAddresses;
}

bool hasMoreBytes(const LeakRecord& one, const LeakRecord& other) noexcept {
    return one.size > other.size;
}

// What is equal in both comes from `first` first.
LeakRecord* merge(LeakRecord* first, LeakRecord* second, Before before) noexcept {
    LeakRecord* merged = nullptr;
    LeakRecord** end = &merged;
    while (first != nullptr && second != nullptr) {
        LeakRecord*& smaller = before(*second, *first) ? second : first;
        *end = smaller;
        end = &smaller->next;
        smaller = smaller->next;
    }
    *end = first != nullptr ? first : second;
    return merged;
}

// Merges runs of equal length, so that n records cost n times log n comparisons.
LeakRecord* sorted(LeakRecord* records, Before before) noexcept {
    LeakRecord* runs[std::numeric_limits<std::size_t>::digits]{};  // run i: 2^i records, or none
    while (records != nullptr) {
        LeakRecord* run = std::exchange(records, records->next);
        run->next = nullptr;
        std::size_t index = 0;
        for (; runs[index] != nullptr; ++index)
            run = merge(std::exchange(runs[index], nullptr), run, before);
        runs[index] = run;
    }
    LeakRecord* all = nullptr;
    for (LeakRecord* run : runs)
        all = merge(run, all, before);
    return all;
}

}  // namespace

LeakRecord* groupByStack(LeakRecord* records, void (*dispose)(LeakRecord*) noexcept) noexcept {
    LeakRecord* const groups = sorted(records, hasLesserStack);
    for (LeakRecord* group = groups; group != nullptr; group = group->next)
        while (group->next != nullptr && group->next->returnAddresses == group->returnAddresses) {
            LeakRecord* const same = std::exchange(group->next, group->next->next);
            group->size += same->size;
            group->blocks += same->blocks;
            dispose(same);
        }
    return sorted(groups, hasMoreBytes);
}

}  // namespace veltra::detail
