// SPDX-License-Identifier: MIT
// Reversing the byte order of plain arrays: what stands between big-endian and little-endian files.
//
// All of these work in place on any address, aligned or not, whatever the order of the host. A null
// pointer does nothing.
// Thread: any; pure functions of their buffers. Realtime-safe: yes.
#pragma once

#include "veltra/c_linkage.h"

#include <stdbool.h>
#include <stdint.h>

VELTRA_C_BEGIN

// Reverses each of `count` groups of 8, 4 and 2 bytes, in place.
//
// Deliberate, here and in PSwapCopyLong: a count of 0x80000001 and more does nothing, just as
// 0 does. A caller that computes its count may thus arrive at a negative number without harm.
VELTRA_EXPORT void PSwapLongLong(void* buffer, uint32_t count) VELTRA_NOEXCEPT;
VELTRA_EXPORT void PSwapLong(void* buffer, uint32_t count) VELTRA_NOEXCEPT;
VELTRA_EXPORT void PSwapWord(void* buffer, uint32_t count) VELTRA_NOEXCEPT;

// Writes to `destination` what PSwapLong would make of `source`. `destination` may be
// `source`; buffers that overlap otherwise give no useful result.
VELTRA_EXPORT void PSwapCopyLong(void* destination, const void* source,
                                 uint32_t count) VELTRA_NOEXCEPT;

// Reverses the 4 bytes at `value`. The two names do the same.
VELTRA_EXPORT void SwapInt32(void* value) VELTRA_NOEXCEPT;
VELTRA_EXPORT void SwapLong(void* value) VELTRA_NOEXCEPT;

// Turns `sampleCount` samples of a native stream into swapped ones, or back, in place, by the
// number of bits of a sample:
//   32 bits  reverses each 4-byte sample
//   24 bits  exchanges the first and the third byte of each 3-byte sample
//    8 bits  subtracts 128 from each byte (modulo 256): signed to unsigned and back
//   other    exchanges the bytes of each 16-bit sample
// `ignored` has no effect. Always returns true.
VELTRA_EXPORT bool ProcessSwapIntel(void* buffer, uint32_t sampleCount, uint32_t ignored,
                                    int32_t bitsPerSample) VELTRA_NOEXCEPT;

VELTRA_C_END
