// SPDX-License-Identifier: MIT
// For C and every language that can call it: the CMusicalContext of musical_context.h, musical time
// at one sample position. The record has the same bytes in both languages.
//
//     VLMusicalContext now = VLMusicalContextMake(22050, 0, NULL);
//     printf("beat %d\n", now.positionInTicks / kVLTicksPerBeat);     // 1
#pragma once

#include "veltra/c_linkage.h"

#include <stdint.h>

VELTRA_C_BEGIN

enum { kVLTicksPerBeat = 15360 };

typedef struct VLMusicalContext {
    int32_t samplePosition;        // samples; before 0 too
    int32_t second;                // the host's own number; only stored
    int32_t tempo;                 // thousandths of a beat per minute; 120000
    int32_t meterNumerator;        // 4; only stored
    int32_t meterDenominator;      // 4; only stored
    int32_t positionInTicks;       // 0 until it is calculated, as the next two
    int32_t positionInBarInTicks;  // from the nearest bar line, so also negative
    int32_t samplesToNextTick;     // 0 to 2 by the built-in calculator
    int32_t reserved[4];           // 0; the host's own
    uint32_t last;                 // 0; the host's own
} VLMusicalContext;

// Fills in the musical position of `context`, whose fields hold the values above. It must not
// throw.
typedef void (*VLMusicalContextCalculator)(int32_t samplePosition, int32_t second,
                                           VLMusicalContext* context);

// The context of a sample position, by `calculator`, else by the process's, else by the built-in
// one: 120 beats a minute, 44,100 samples a second, four beats to the bar.
// Thread: any. Realtime-safe: yes, if the calculator is (the built-in one is).
VELTRA_EXPORT VLMusicalContext VLMusicalContextMake(
    int32_t samplePosition, int32_t second, VLMusicalContextCalculator calculator) VELTRA_NOEXCEPT;

// Sets the process's calculator, for contexts made from C++, too; null for the built-in one.
// Thread: any, but not synchronised: only while no other thread makes a context.
// Realtime-safe: yes.
VELTRA_EXPORT void VLMusicalContextSetCalculator(VLMusicalContextCalculator calculator)
    VELTRA_NOEXCEPT;

VELTRA_C_END
