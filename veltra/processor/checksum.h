// SPDX-License-Identifier: MIT
// Checksums of two file formats and protocols: one over text, one over data that may come in
// pieces. The fastest way that the processor offers is chosen when the library is loaded
// (kernels.h, families "crc16" and "crc32"); every way gives the same result for every length and
// alignment.
//
//     uint32_t crc = QKCRC32(0, header, sizeof header);
//     crc = QKCRC32(crc, samples, sampleBytes);    // as if over both in one piece
//
// Thread: any; pure functions of their arguments. Realtime-safe: yes.
#pragma once

#include "veltra/c_linkage.h"

#include <stddef.h>
#include <stdint.h>

VELTRA_C_BEGIN

// The 16-bit CRC of a zero-terminated string, without its zero: CRC-16/AUG-CCITT, that is
// polynomial 0x1021, bits not reflected, initial value 0x1D0F, no final inversion. The digits
// "123456789" give 0xE5CC; the empty string, and null, give 0x1D0F.
//
// Strings of 65536 bytes and more are not supported: of such a string the first 65536 bytes count.
VELTRA_EXPORT uint32_t QKCRC16(const char* text) VELTRA_NOEXCEPT;

// The CRC-32 of zlib and PNG (polynomial 0x04C11DB7, reflected, inverted before and after) of
// `length` bytes at `buffer`, which continues `previous`: 0 for the start of the data, else the
// result of the call before. The digits "123456789" give 0xCBF43926; a length of 0 gives
// `previous`.
//
// Deliberate: a null buffer gives 0, whatever `previous` and `length`, since callers start a sum
// with (0, null, 0).
VELTRA_EXPORT uint32_t QKCRC32(uint32_t previous, const void* buffer,
                               size_t length) VELTRA_NOEXCEPT;

VELTRA_C_END
