// SPDX-License-Identifier: MIT
// Reversing the byte order of whole records, field by field, as a small table tells.
//
//     static const uint8_t kHeader[] = {7, 16, 1, 3, 10, 11, 0};
//     TabIntelSwap(record, kHeader);   // a 32-bit value, two 16-bit, 10 bytes kept, one of 64 bits
//
// Field codes, a byte each:
//     4  5  6      2, 3, 4 bytes kept as they are
//     7            a 32-bit value, reversed;  8  9 10   2, 3, 4 of them
//    11            a 64-bit value, reversed; 12 13 14   2, 3, 4 of them
//    15            a 16-bit value, reversed; 16 17 18   2, 3, 4 of them
//    19            a 32-bit value and a 16-bit value, each reversed
//    20            two 64-bit values, each reversed
//    21            a 16-bit block length, reversed; it then sets the limit (see IntelSwap)
//    any other     1 byte kept as it is
//
// A table is read from its start: 0 ends it; 1, code, n applies a code n times (0 to 255); 2, code,
// nHigh, nLow applies it nHigh * 256 + nLow times; any other byte is a code, applied once. A byte
// that is to be kept is therefore written with code 3.
//
// The limit is one address for the whole process, and deliberately so: table runs, and fields of
// code 21, on two threads at once disturb each other's limit. Keep them to one thread at a time.
// No field need be aligned, and nothing depends on the host's own byte order. A null record, table,
// destination, source or description does nothing. A table must end with 0.
#pragma once

#include "veltra/c_linkage.h"

#include <stddef.h>
#include <stdint.h>

VELTRA_C_BEGIN

// The address that no reversed field may pass; a field may end at it. UINTPTR_MAX, the value
// at the start of the process, means no limit.
// Thread: any, see above. Realtime-safe: yes.
VELTRA_EXPORT uintptr_t GetPIntelLimit(void) VELTRA_NOEXCEPT;
VELTRA_EXPORT void SetPIntelLimit(uintptr_t limit) VELTRA_NOEXCEPT;

// Reverses the field at `record` and answers the address just past it (null for null). A field
// that would end beyond the limit stays as it is, and the same address is answered.
//
// Code 21: the reversed length L is read as a signed big-endian value. When L > 2, the limit
// becomes record + L, the end of the block that the length heads, and stays there after the
// call; outside a table run the caller puts it back.
//
// Deliberate: the codes for 2 to 4 values test the limit value by value, and when the last
// one ends beyond it, the first value is reversed once more, whether it was reversed before
// or not. Files hold records that were written so, and only the same rule reads them back.
// Thread: any, see above. Realtime-safe: yes.
VELTRA_EXPORT void* IntelSwap(void* record, uint8_t fieldCode) VELTRA_NOEXCEPT;

// IntelSwap on `repeatCount` fields of one code, one after another; 0 and less do nothing.
// Thread: any, see above. Realtime-safe: yes.
VELTRA_EXPORT void MultiIntelSwap(void* record, uint8_t fieldCode,
                                  int32_t repeatCount) VELTRA_NOEXCEPT;

// Reverses the fields of `record` that `table` lists, without a limit or up to `limit`. The
// limit that was in force before is in force again afterwards.
// Thread: any, see above. Realtime-safe: yes.
VELTRA_EXPORT void TabIntelSwap(void* record, const uint8_t* table) VELTRA_NOEXCEPT;
VELTRA_EXPORT void LimitTabIntelSwap(void* record, const uint8_t* table,
                                     uintptr_t limit) VELTRA_NOEXCEPT;

// Copies `length` bytes of fields, reversing some. `description` holds a signed byte for each
// field and ends with 0: k > 0 is a field of k bytes, reversed when k is 2, 4 or 8; k < 0 is
// |k| bytes kept as they are. The first field that does not fit in what is left of `length`
// ends the copy. A field may overlap its copy; with `destination` = `source` the fields are
// reversed in place.
// Thread: any; does not use the limit. Realtime-safe: yes.
VELTRA_EXPORT void SwapData(void* destination, const void* source, const int8_t* description,
                            size_t length) VELTRA_NOEXCEPT;

VELTRA_C_END
