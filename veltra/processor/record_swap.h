// SPDX-License-Identifier: MIT
// Reversing the byte order of whole records, field by field, as a small table tells.
//
//     static const uint8_t kHeader[] = {7, 16, 1, 3, 10, 11, 0};
//     TabIntelSwap(record, kHeader);   // a 32-bit value, two 16-bit, 10 bytes kept, one of 64 bits
//
//     if (!SwapRecordWithin(bytes, byteCount, kHeader, sizeof kHeader, NULL)) return kTooShort;
//
// Records from files and other programs go through SwapRecordWithin. The other functions trust
// their caller: the record is as long as the table says, and the limit does not protect memory.
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
// SwapRecordWithin and SwapData have nothing to do with it.
// No field need be aligned, and nothing depends on the host's own byte order. A null record, table,
// destination, source or description does nothing. A table must end with 0.
#pragma once

#include "veltra/c_linkage.h"

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

VELTRA_C_BEGIN

// The address that no reversed field may pass; a field may end at it. UINTPTR_MAX, the value
// at the start of the process, means no limit.
//
// The limit decides what stays reversed. It does not keep a call inside a buffer: a field of code
// 21 is read and written before the limit is asked, and its length replaces the limit by what the
// record says; the codes for 2 to 4 values touch the first value behind the limit too.
// Thread: any, see above. Realtime-safe: yes.
VELTRA_EXPORT uintptr_t GetPIntelLimit(void) VELTRA_NOEXCEPT;
VELTRA_EXPORT void SetPIntelLimit(uintptr_t limit) VELTRA_NOEXCEPT;

// Reverses the field at `record` and returns the address just past it (null for null). A field
// that would end beyond the limit stays as it is, and the same address is returned.
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

// IntelSwap on `repeatCount` fields of one code, one after another; 0 and less do nothing. Codes
// for one value take no time for fields beyond the limit.
// Thread: any, see above. Realtime-safe: yes.
VELTRA_EXPORT void MultiIntelSwap(void* record, uint8_t fieldCode,
                                  int32_t repeatCount) VELTRA_NOEXCEPT;

// Reverses the fields of `record` that `table` lists, without a limit or up to `limit`. The
// limit that was in force before is in force again afterwards. For records whose layout the caller
// knows: what the table reaches must exist, also behind `limit`.
// Thread: any, see above. Realtime-safe: yes.
VELTRA_EXPORT void TabIntelSwap(void* record, const uint8_t* table) VELTRA_NOEXCEPT;
VELTRA_EXPORT void LimitTabIntelSwap(void* record, const uint8_t* table,
                                     uintptr_t limit) VELTRA_NOEXCEPT;

// Reverses the fields of `record` that `table` lists and touches nothing beyond the `size` bytes of
// the record and the `tableSize` bytes of the table, whatever they hold. It takes time in
// proportion to the two sizes.
//
// Returns true when the whole table was applied. Returns false, after everything in front was
// reversed, at the first field that passes the end of the record, and where the table ends without
// its 0 or within an entry; also for a null `record` or `table`. `taken`, which may be null,
// receives how many bytes of the record the applied fields take, kept ones included: with false,
// that is where the field begins that did not fit.
//
// A block length (code 21) larger than what is left of the record counts as what is left. Fields
// behind the end of their block stay as they are, and do not make the result false.
//
// The bytes become those that LimitTabIntelSwap makes with the limit record + size, wherever that
// stays inside the record, the rule for the codes of 2 to 4 values included: of such a field that
// does not fit, the values that do are reversed, then the first once more, if that one fits.
// Thread: any; a pure function of its buffers. Realtime-safe: yes.
VELTRA_EXPORT bool SwapRecordWithin(void* record, size_t size, const uint8_t* table,
                                    size_t tableSize, size_t* taken) VELTRA_NOEXCEPT;

// Copies `length` bytes of fields, reversing some. `description` holds a signed byte for each
// field and ends with 0: k > 0 is a field of k bytes, reversed when k is 2, 4 or 8; k < 0 is
// |k| bytes kept as they are. The first field that does not fit in what is left of `length`
// ends the copy. A field may overlap its copy; with `destination` = `source` the fields are
// reversed in place. `length` has no sign: a negative length that a caller worked out becomes a
// huge one, and the copy then goes to the end of the description.
// Thread: any; does not use the limit. Realtime-safe: yes.
VELTRA_EXPORT void SwapData(void* destination, const void* source, const int8_t* description,
                            size_t length) VELTRA_NOEXCEPT;

VELTRA_C_END
