// SPDX-License-Identifier: MIT
// A thin layer over the heap for hosts: one policy for the whole process says what an allocation
// does when the heap refuses.
//
// Policy and count of blocks are plain words, not kept in step between threads: the policy is set
// at start, before other threads allocate. The blocks are the heap's own. Sizes are 32 bits wide on
// every host.
#pragma once

#include "veltra/export.h"

#include <stdint.h>

VELTRA_C_BEGIN

// What to do when the heap refuses; also what a failure handler answers. Any other number is
// deliberately never left: the call does not return, so that a broken handler shows at once
// instead of as a null pointer somewhere else.
enum {
    kMemExceptionReport =
        0,                  // writes "Fatal error: out of memory\n" to standard error, exits with 1
    kMemExceptionExit = 1,  // ends the process with exit status 1
    kMemExceptionNull = 2,  // answers null: the default
    kMemExceptionCall = 3,  // calls the handler, which says what to do next
    kMemExceptionRetry = 4  // asks the heap once more
};

typedef int (*MemExceptionHandler)(void);

// Marks the module as in use; the first call also sets the count of outstanding blocks to 0.
// Allocating works without it. Always 1.
// Thread: main. Realtime-safe: yes.
VELTRA_EXPORT int Mem_InitModule(void) VELTRA_NOEXCEPT;

// Takes the mark away; policy and count stay.
// Thread: main. Realtime-safe: yes.
VELTRA_EXPORT void Mem_TermModule(void) VELTRA_NOEXCEPT;

// Sets the policy. `handler` is kept with kMemExceptionCall only, and must not be null then: it is
// called as it stands.
// Thread: main, before others allocate. Realtime-safe: yes.
VELTRA_EXPORT void Mem_SetException(int action, MemExceptionHandler handler) VELTRA_NOEXCEPT;

// How many blocks were handed out and not given back; approximate while several threads allocate,
// below 0 when more came back than were handed out. To find leaks: the same before and after.
// Thread: any. Realtime-safe: yes.
VELTRA_EXPORT int32_t Mem_outstandingBlocks(void) VELTRA_NOEXCEPT;

// A block of `size` bytes, or null as the policy says. Null for size 0, without asking the heap.
// Thread: any. Realtime-safe: no.
VELTRA_EXPORT void* Mem_malloc(uint32_t size) VELTRA_NOEXCEPT;

// A block of `count` elements of `size` bytes, all 0. Null when the product is 0 in 32 bits, which
// it deliberately is for 65536 times 65536, too.
// Thread: any. Realtime-safe: no.
VELTRA_EXPORT void* Mem_calloc(uint32_t count, uint32_t size) VELTRA_NOEXCEPT;

// Changes the size of `block` and answers where it is then; when the answer is null for want of
// memory, `block` is as it was. A null `block` is allocated; size 0 frees and answers null.
// Thread: any. Realtime-safe: no.
VELTRA_EXPORT void* Mem_realloc(void* block, uint32_t size) VELTRA_NOEXCEPT;

// A copy of the NUL-terminated `text`, to be freed by the caller. Null for null and for texts of
// 4,294,967,295 bytes and more.
// Thread: any. Realtime-safe: no.
VELTRA_EXPORT char* Mem_strdup(const char* text) VELTRA_NOEXCEPT;

// Does nothing for null.
// Thread: any. Realtime-safe: no.
VELTRA_EXPORT void Mem_free(void* block) VELTRA_NOEXCEPT;

VELTRA_C_END
