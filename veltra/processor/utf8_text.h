// SPDX-License-Identifier: MIT
// NUL-terminated UTF-8: measuring, copying without splitting a character, checking, and the way to
// string objects, the log and the legacy encoding of file systems.
//
// Sequences of up to six bytes count as characters; code points are never decoded except where a
// string object is made, which takes well-formed UTF-8 of up to four bytes only. A null `text` or
// `source` is an empty one, unless a function says otherwise. Buffers of one call must not overlap,
// except where a function allows it.
//
// Thread: any, for every function but the two that log (any but audio).
#pragma once

#include "veltra/base/string_object.h"
#include "veltra/c_linkage.h"

#include <stddef.h>

VELTRA_C_BEGIN

// The length in bytes of the leading run of ASCII characters, 0 for null: "abc" has 3, a text that
// begins with "é" has 0. Deliberately not the length of the whole text, which strlen tells: callers
// use it to find where plain characters end.
// Realtime-safe: yes.
VELTRA_EXPORT size_t utf8_strlen(const char* text) VELTRA_NOEXCEPT;

// Copies as many whole characters as fit into `capacity` bytes and fills the rest of the buffer
// with zero bytes; what fills it exactly has no terminator. Continuation bytes at the start of
// `source` are skipped. A character is as long as its first byte announces, whatever follows; one
// that the terminator cuts short is copied up to there. `destination` may be `source` or begin in
// front of it, to trim a text in place. Returns `destination`; null does nothing.
// Realtime-safe: yes.
VELTRA_EXPORT char* utf8_strncpy(char* destination, const char* source,
                                 size_t capacity) VELTRA_NOEXCEPT;

// The same into `capacity` - 1 bytes, always followed by a NUL. With `capacity` 0, for which there
// is no room, it does nothing.
// Realtime-safe: yes.
VELTRA_EXPORT char* utf8_strlcpy(char* destination, const char* source,
                                 size_t capacity) VELTRA_NOEXCEPT;

// Returns 1 when the text is well built, else 0, also for null. In each run of bytes that are not
// ASCII, the first byte must not be a continuation byte, and the last lead byte must be followed by
// just as many bytes as it announces. Deliberately no more than that: a lead byte may interrupt an
// unfinished sequence (C3 C3 A9 passes), and 0xFD and 0xFF, which announce nothing here, are passed
// over.
// Realtime-safe: yes.
VELTRA_EXPORT int utf8_check(const char* text) VELTRA_NOEXCEPT;

// Examines nothing and returns 0; kept so that programs that call it still link.
// Realtime-safe: yes.
VELTRA_EXPORT int utf8_verify(void) VELTRA_NOEXCEPT;

// Returns 1 when none of the first `length` bytes, or of those in front of the terminator if it
// comes earlier, is 0x80 or above; else 0, also for null. A `length` of 0 means the whole text.
// Realtime-safe: yes.
VELTRA_EXPORT int utf8_is_ascii(const char* text, size_t length) VELTRA_NOEXCEPT;

// A string object of the text, which the caller releases with VLStringRelease. Null for an empty
// text, for ill-formed UTF-8 and when memory is out. The two names do the same.
// Realtime-safe: no.
VELTRA_EXPORT const VLString* utf8_to_cfstring(const char* text) VELTRA_NOEXCEPT;
VELTRA_EXPORT const VLString* utf8_to_nsstring(const char* text) VELTRA_NOEXCEPT;

// Takes the first `capacity` - 1 UTF-16 units of `string`, writes as many whole characters of them
// as fit into `capacity` - 1 bytes as UTF-8, and a NUL. A surrogate pair that the count of units
// cuts in two becomes "?". A null `string` gives the empty text; with `capacity` 0 or a null
// `destination` nothing happens. The two names do the same.
// Realtime-safe: yes.
VELTRA_EXPORT void utf8_from_cfstring(char* destination, const VLString* string,
                                      size_t capacity) VELTRA_NOEXCEPT;
VELTRA_EXPORT void utf8_from_nsstring(char* destination, const VLString* string,
                                      size_t capacity) VELTRA_NOEXCEPT;

// Logs the text as it stands, as a notice, or "utf8_log: malformed string" when it makes no string
// object. Nothing for null or an empty text.
// Thread: any but audio. Realtime-safe: no.
VELTRA_EXPORT void utf8_log(const char* text) VELTRA_NOEXCEPT;

// The same with "utf8_trace: malformed string". In front of that, a line on standard error,
// whatever that is, describes the string object: its length and its text. Thread: any but audio.
// Realtime-safe: no.
VELTRA_EXPORT void utf8_trace(const char* text) VELTRA_NOEXCEPT;

// Writes the text in the legacy encoding (see text_services.h), "_" for each character that it
// lacks, cut after `capacity` - 1 bytes, and a NUL. The empty text when `source` makes no string
// object or there is no converter. Returns `destination`; null does nothing. Deliberately, the NUL
// is written with `capacity` 0 too: callers count on a terminated buffer, which has at least one
// byte.
//
// `lost` may be null; else it receives null or, when what was written does not read back as the
// same text, the string object it does read back as, which the caller releases. With `capacity` 0
// what `lost` points to is left alone.
// Realtime-safe: no.
VELTRA_EXPORT char* utf8_to_fsspecFileSystemCString(char* destination, const char* source,
                                                    size_t capacity,
                                                    const VLString** lost) VELTRA_NOEXCEPT;

// The same as a length byte and up to 254 bytes of text, without a NUL to rely on. The text is cut
// after min(`capacity`, 255) - 1 bytes.
// Realtime-safe: no.
VELTRA_EXPORT char* utf8_to_fsspecFileSystemPascalString(char* destination, const char* source,
                                                         size_t capacity,
                                                         const VLString** lost) VELTRA_NOEXCEPT;

// Writes the text as the file system wants names, and a NUL. Returns 1. Returns 0 with an empty
// destination when the text is ill-formed UTF-8 or does not fit whole into `capacity` bytes, NUL
// included: half a path is another file. With `capacity` 0 or a null `destination` it writes
// nothing and returns 0.
// Realtime-safe: no.
VELTRA_EXPORT int utf8_to_fileSystemRepresentation(char* destination, const char* source,
                                                   size_t capacity) VELTRA_NOEXCEPT;

VELTRA_C_END
