// SPDX-License-Identifier: MIT
// For C and every language that can call it: lists of transients (transients.h) as plain arrays of
// the caller's, sorted, freed of duplicates and thinned out in place.
//
//     VLTransient onsets[] = {VLTransientMake(900, 0.5F), VLTransientMake(100, 0.25F)};
//     size_t count = VLTransientsSortAndMakeUniquePos(onsets, 2);
//
// The sorts are stable and give the same result on every host; transients.h says what they cost.
//
// Thread: any, one thread at a time for each list. Realtime-safe: no, but the order checks.
#pragma once

#include "veltra/c_linkage.h"

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

VELTRA_C_BEGIN

// The same 36 bytes as a CTransient of C++, on every host. An address of `pos` may be aligned to
// 4 bytes only: copy the value.
#pragma pack(push, 4)
typedef struct VLTransient {
    int64_t pos;               // where in the signal; any value
    float energy;              // strength
    uint32_t reserved3;        // the host's own; only stored
    float visibleWeight;       // weight for display
    uint32_t reserved5to7[3];  // the host's own; only stored
    float freqHz;              // frequency in hertz
} VLTransient;
#pragma pack(pop)

// A transient with a weight of 1; all that is not given is 0.
// Thread: any. Realtime-safe: yes.
VELTRA_EXPORT VLTransient VLTransientMake(int64_t pos, float energy) VELTRA_NOEXCEPT;

// "CTransient: pos 7, Energy 1, visibleweight 1, FreqHz 440", the same in every locale: writes at
// most `capacity` - 1 bytes, then a NUL, and returns the length of the whole text without the NUL.
// With `capacity` 0 or a null `destination` nothing is written. Empty for a null transient, and
// when memory is out.
VELTRA_EXPORT size_t VLTransientText(const VLTransient* transient, char* destination,
                                     size_t capacity) VELTRA_NOEXCEPT;

// All of the following take an array of `count` transients; null is an empty one.

// Whether each position is at most the next, or less than the next. Lists of none and of one are
// both.
// Realtime-safe: yes.
VELTRA_EXPORT bool VLTransientsAreSortedByPos(const VLTransient* transients,
                                              size_t count) VELTRA_NOEXCEPT;
VELTRA_EXPORT bool VLTransientsAreUniqueAndSortedByPos(const VLTransient* transients,
                                                       size_t count) VELTRA_NOEXCEPT;

// By position, the lowest first; those at one position keep their order.
VELTRA_EXPORT void VLTransientsSortByPos(VLTransient* transients, size_t count) VELTRA_NOEXCEPT;

// The weakest first; of equal energies the lowest position first. Energies that are NaN come last,
// equal to each other.
VELTRA_EXPORT void VLTransientsSortByEnergyAndPos(VLTransient* transients,
                                                  size_t count) VELTRA_NOEXCEPT;

// Sorts by position and keeps the first transient at each. Returns how many are kept; what the
// array holds behind them is of no use.
VELTRA_EXPORT size_t VLTransientsSortAndMakeUniquePos(VLTransient* transients,
                                                      size_t count) VELTRA_NOEXCEPT;

// When there are more than `size` transients, keeps the first `size` of the order by energy and
// position. Then sorts by position. Returns how many are kept, as above. Deliberate: it is the
// weakest that are kept.
VELTRA_EXPORT size_t VLTransientsThinOutToSizeAndSortByPos(VLTransient* transients, size_t count,
                                                           size_t size) VELTRA_NOEXCEPT;

VELTRA_C_END
