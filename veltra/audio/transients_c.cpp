// SPDX-License-Identifier: MIT
#include "veltra/audio/transients_c.h"

#include "veltra/audio/detail/transient_sort.h"
#include "veltra/audio/transients.h"
#include "veltra/base/out_of_memory.h"
#include "veltra/base/text_copy.h"

#include <bit>
#include <cstddef>
#include <span>
#include <string>

namespace veltra {

namespace {

// One record under two names.
static_assert(sizeof(VLTransient) == sizeof(CTransient));
static_assert(alignof(VLTransient) == alignof(CTransient));
static_assert(offsetof(VLTransient, energy) == offsetof(CTransient, Energy) &&
              offsetof(VLTransient, visibleWeight) == offsetof(CTransient, visibleweight) &&
              offsetof(VLTransient, freqHz) == offsetof(CTransient, FreqHz));

std::span<CTransient> listOf(VLTransient* transients, size_t count) noexcept {
    return {reinterpret_cast<CTransient*>(transients), transients != nullptr ? count : 0};
}

std::span<const CTransient> listOf(const VLTransient* transients, size_t count) noexcept {
    return {reinterpret_cast<const CTransient*>(transients), transients != nullptr ? count : 0};
}

}  // namespace

VLTransient VLTransientMake(int64_t pos, float energy) noexcept {
    CTransient transient;
    transient.pos = pos;
    transient.Energy = energy;
    return std::bit_cast<VLTransient>(transient);
}

size_t VLTransientText(const VLTransient* transient, char* destination, size_t capacity) noexcept {
    const std::string text = unlessOutOfMemory(std::string(), [transient] {
        return transient != nullptr ? std::bit_cast<CTransient>(*transient).TraceStr()
                                    : std::string();
    });
    return copyText(text, destination, capacity);
}

bool VLTransientsAreSortedByPos(const VLTransient* transients, size_t count) noexcept {
    return detail::isSortedByPos(listOf(transients, count));
}

bool VLTransientsAreUniqueAndSortedByPos(const VLTransient* transients, size_t count) noexcept {
    return detail::isUniqueAndSortedByPos(listOf(transients, count));
}

void VLTransientsSortByPos(VLTransient* transients, size_t count) noexcept {
    detail::sortByPos(listOf(transients, count));
}

void VLTransientsSortByEnergyAndPos(VLTransient* transients, size_t count) noexcept {
    detail::sortByEnergyAndPos(listOf(transients, count));
}

size_t VLTransientsSortAndMakeUniquePos(VLTransient* transients, size_t count) noexcept {
    return detail::sortAndMakeUniquePos(listOf(transients, count));
}

size_t VLTransientsThinOutToSizeAndSortByPos(VLTransient* transients, size_t count,
                                             size_t size) noexcept {
    return detail::thinOutAndSortByPos(listOf(transients, count), size);
}

}  // namespace veltra
