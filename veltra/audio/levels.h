// SPDX-License-Identifier: MIT
// For C and every language that can call it: levels from an audio callback to a meter. Each
// function does what the member of LevelTap of that name says (level_tap.h).
//
//     VLLevelTap* tap = VLLevelTapCreate();
//     VLLevelTapAdd(tap, block, frames, 1);                            // audio thread
//     VLLevelReading level = VLLevelTapTake(tap);                      // main thread
//     if (level.frames > 0) show(20.0 * log10(level.peak));
#pragma once

#include "veltra/c_linkage.h"

#include <stddef.h>
#include <stdint.h>

VELTRA_C_BEGIN

// What stands between the audio callback and the meter; hosts only ever hold pointers to one.
typedef struct VLLevelTap VLLevelTap;

typedef struct VLLevelReading {
    float peak;        // largest magnitude, 1 at full scale
    float meanSquare;  // of all samples
    uint64_t frames;   // 0: none have come
} VLLevelReading;

// The caller destroys it with VLLevelTapDestroy, when no other call is in progress. Null when
// memory is out.
// Thread: any. Realtime-safe: no.
VELTRA_EXPORT VLLevelTap* VLLevelTapCreate(void) VELTRA_NOEXCEPT;
VELTRA_EXPORT void VLLevelTapDestroy(VLLevelTap* tap) VELTRA_NOEXCEPT;  // null: nothing

// Thread: audio, one at a time. Realtime-safe: yes, wait-free. Null: nothing.
VELTRA_EXPORT void VLLevelTapAdd(VLLevelTap* tap, const float* samples, size_t frames,
                                 size_t stride) VELTRA_NOEXCEPT;

// Thread: one at a time. Realtime-safe: yes, wait-free. Null: a reading without frames.
VELTRA_EXPORT VLLevelReading VLLevelTapTake(VLLevelTap* tap) VELTRA_NOEXCEPT;

VELTRA_C_END
