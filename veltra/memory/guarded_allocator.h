// SPDX-License-Identifier: MIT
// A thin layer over the heap for hosts: one policy for the whole process says what an allocation
// does when the heap refuses.
//
// Policy and count of blocks are plain words that no lock guards: set the policy at the start,
// before other threads allocate. The blocks are the heap's own. Sizes are 32 bits wide on every
// host.
#pragma once

#include "veltra/c_linkage.h"

#include <stdint.h>

VELTRA_C_BEGIN

// What to do when the heap refuses a block. A failure handler returns one of these, too. With any
// other number the call deliberately never returns: a broken handler shows at once, and not as a
// null pointer somewhere else.
enum {
    kMemExceptionReport =
        0,                  // writes "Fatal error: out of memory\n" to standard error, exits with 1
    kMemExceptionExit = 1,  // ends the process with exit status 1
    kMemExceptionNull = 2,  // returns null: the default
    kMemExceptionCall = 3,  // calls the handler, which says what to do next
    kMemExceptionRetry = 4  // asks the heap once more
};

// A failure handler: makes room if it can, and returns one of the numbers above. It is called on
// the thread that wants the block.
typedef int (*MemExceptionHandler)(void);

// Marks the module as in use; the first call also sets the count of outstanding blocks to 0.
// Allocating works without it. Always returns 1.
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

// Returns a block of `size` bytes, or null when the policy says so. Null for size 0, without asking
// the heap. The caller frees it with Mem_free().
// Thread: any. Realtime-safe: no.
VELTRA_EXPORT void* Mem_malloc(uint32_t size) VELTRA_NOEXCEPT;

// The same for `count` elements of `size` bytes, all 0. Null when the product is 0 in 32 bits:
// deliberately also for 65536 times 65536.
// Thread: any. Realtime-safe: no.
VELTRA_EXPORT void* Mem_calloc(uint32_t count, uint32_t size) VELTRA_NOEXCEPT;

// Changes the size of `block` and returns where it is then. Null when memory is out; then `block`
// is as it was. A null `block` is allocated; size 0 frees it and returns null. Thread: any.
// Realtime-safe: no.
VELTRA_EXPORT void* Mem_realloc(void* block, uint32_t size) VELTRA_NOEXCEPT;

// Returns a copy of the NUL-terminated `text`, which the caller frees with Mem_free(). Null for
// null, for a text of 4,294,967,295 bytes and more, and when the policy says so. Thread: any.
// Realtime-safe: no.
VELTRA_EXPORT char* Mem_strdup(const char* text) VELTRA_NOEXCEPT;

// Frees a block of one of the functions above. Does nothing for null.
// Thread: any. Realtime-safe: no.
VELTRA_EXPORT void Mem_free(void* block) VELTRA_NOEXCEPT;

VELTRA_C_END
