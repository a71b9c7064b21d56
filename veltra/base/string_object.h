// SPDX-License-Identifier: MIT
// String objects: immutable text that C callers can hold, hand over and share. Inside the library
// text is UTF-8 in std::string_view and std::string; string objects appear where an exported
// function takes or gives text that outlives the call.
//
// Ownership: a function with "Create" in its name gives its caller one reference, to be given back
// with VLStringRelease; so do utf8_to_cfstring, utf8_to_nsstring and, through `lost`, the legacy
// conversions of utf8_text.h, and all functions of environment.h that return a string object. Every
// other function only looks at the object during the call. An object lives until its last reference
// is released; counting is safe from several threads at once.
//
// An object always holds well-formed UTF-16 (ill-formed input makes no object), so that reading one
// never fails.
#pragma once

#include "veltra/c_linkage.h"

#include <stddef.h>
#include <stdint.h>

VELTRA_C_BEGIN

// A string object, counted by references; callers only ever hold pointers to one.
typedef struct VLString VLString;

// A string object of the `length` bytes of UTF-8 at `bytes`; zero bytes are text like any
// other. Null when the bytes are not UTF-8 (over-long forms, encoded surrogates and values
// above U+10FFFF included), when `bytes` is null and `length` is not 0, or when memory is out.
// Thread: any. Realtime-safe: no.
VELTRA_EXPORT const VLString* VLStringCreateWithUtf8(const char* bytes,
                                                     size_t length) VELTRA_NOEXCEPT;

// The same for a NUL-terminated text; null for null.
// Thread: any. Realtime-safe: no.
VELTRA_EXPORT const VLString* VLStringCreateWithCString(const char* text) VELTRA_NOEXCEPT;

// A string object of `count` UTF-16 units in the host's byte order. Null when a surrogate has
// no partner, when `units` is null and `count` is not 0, or when memory is out.
// Thread: any. Realtime-safe: no.
VELTRA_EXPORT const VLString* VLStringCreateWithUtf16(const uint16_t* units,
                                                      size_t count) VELTRA_NOEXCEPT;

// Adds a reference and returns `string`. Null for null.
// Thread: any. Realtime-safe: yes.
VELTRA_EXPORT const VLString* VLStringRetain(const VLString* string) VELTRA_NOEXCEPT;

// Gives one reference back; the last one frees the object. Does nothing for null.
// Thread: any. Realtime-safe: no (it may free).
VELTRA_EXPORT void VLStringRelease(const VLString* string) VELTRA_NOEXCEPT;

// Number of UTF-16 units; 0 for null.
// Thread: any. Realtime-safe: yes.
VELTRA_EXPORT size_t VLStringLength(const VLString* string) VELTRA_NOEXCEPT;

// The text as UTF-8: writes whole characters only, at most `capacity` - 1 bytes, then a NUL,
// and returns how many bytes the whole text has without the NUL. A result of `capacity` or more
// means that the copy was cut. With `capacity` 0 or a null `destination` nothing is written. A null
// `string` is the empty text.
// Thread: any. Realtime-safe: yes.
VELTRA_EXPORT size_t VLStringCopyUtf8(const VLString* string, char* destination,
                                      size_t capacity) VELTRA_NOEXCEPT;

// The text as UTF-16 units in the host's byte order, without a terminator: writes at most
// `capacity` units and returns how many the whole text has. With a null `destination` nothing is
// written. A null `string` is the empty text.
// Thread: any. Realtime-safe: yes.
VELTRA_EXPORT size_t VLStringCopyUtf16(const VLString* string, uint16_t* destination,
                                       size_t capacity) VELTRA_NOEXCEPT;

VELTRA_C_END
