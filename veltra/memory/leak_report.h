// SPDX-License-Identifier: MIT
// What the leak guard has on record, for people and for tests: blocks that were allocated by the
// same calls are one leak, the largest first, with the names of the functions and their lines.
//
// A test states that a piece of code leaks nothing:
//
//     QKResetLeakGuardHistory(false);
//     loadAndCloseASong();   // opens a scope
//     EXPECT_EQ(QKLeakGuardVisitLeaks(addFailure, nullptr), 0);
//
// where addFailure() gets each leak with its text. For the raw addresses see leak_guard.h.
#pragma once

#include "veltra/c_linkage.h"

#include <stddef.h>
#include <stdint.h>

VELTRA_C_BEGIN

// One leak, valid during the visitor's call.
typedef struct QKLeak {
    size_t bytes;   // of all its blocks, as they were asked for
    size_t blocks;  // 1 or more

    // Where the functions that allocated it would have gone on, the innermost first.
    const uintptr_t* returnAddresses;
    int addressCount;  // 0 to 16

    // The same for people: "512 bytes in 2 blocks", then a line for each function, all with a line
    // end. "main" is the last one.
    const char* text;
} QKLeak;

// What it allocates is not recorded. It must not throw.
typedef void (*QKLeakVisitor)(void* context, const QKLeak* leak);

// Forgets all blocks on record as QKResetLeakGuardHistory() does, and calls `visitor` (null:
// nobody) for each leak. Returns how many bytes all leaks are together: 0 when nothing leaks, and
// -1 when the guard sees nothing, because it is off or because the allocations of the process do
// not pass through its zone. So a test that expects 0 cannot pass in vain. Thread: any but audio.
// Realtime-safe: no.
VELTRA_EXPORT long QKLeakGuardVisitLeaks(QKLeakVisitor visitor, void* context) VELTRA_NOEXCEPT;

// The same, with the texts written to standard output, as many as the preference
// LeakGuardPrintLimit says (0: all), and the sum of all. Nothing is written when the guard sees
// nothing.
// Thread: any but audio. Realtime-safe: no.
VELTRA_EXPORT long QKLeakGuardPrintLeaks(void) VELTRA_NOEXCEPT;

VELTRA_C_END
