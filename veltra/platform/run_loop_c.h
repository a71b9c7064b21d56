// SPDX-License-Identifier: MIT
// For C and every language that can call it: the RunLoop of run_loop.h, which drives the timers of
// one thread from whatever event loop that thread runs. It owns no thread and never waits. The
// timers themselves: veltra/infrastructure/timer_c.h.
//
//     struct pollfd watched = {VLRunLoopDescriptor(VLRunLoopCurrent()), POLLIN, 0};
//     while (isRunning)
//         if (poll(&watched, 1, -1) > 0) VLRunLoopRunDue(VLRunLoopCurrent());
//
// Thread: the loop's own, for everything in here. Realtime-safe: no.
#pragma once

#include "veltra/c_linkage.h"

#include <stdint.h>

VELTRA_C_BEGIN

// The loop of one thread; hosts only ever hold pointers to one.
typedef struct VLRunLoop VLRunLoop;

// The loop of the calling thread: the one that a host set from C++, such as Qt's; else one that is
// made on first use and kept until the thread ends. The library owns it. Null when memory is out,
// and while the thread's own data is being destroyed.
VELTRA_EXPORT VLRunLoop* VLRunLoopCurrent(void) VELTRA_NOEXCEPT;

// A file descriptor that polls readable once VLRunLoopRunDue has something to do and until it was
// called. The loop owns it, and nobody else reads from it. A forked child asks again. -1 for null,
// and when this kind of loop has none.
VELTRA_EXPORT int VLRunLoopDescriptor(VLRunLoop* loop) VELTRA_NOEXCEPT;

// Nanoseconds until VLRunLoopRunDue has something to do, 0 when it has already: for a host that
// waits with a time limit. -1 when no timer waits, for null, and when the clock cannot be read.
VELTRA_EXPORT int64_t VLRunLoopTimeToDeadline(const VLRunLoop* loop) VELTRA_NOEXCEPT;

// Fires each timer that is due, earliest first, and returns how many. Ticks that were missed are
// skipped: a timer keeps its schedule. Null: 0. An exception that leaves the action of a timer ends
// the process, for it cannot pass through C.
VELTRA_EXPORT int VLRunLoopRunDue(VLRunLoop* loop) VELTRA_NOEXCEPT;

VELTRA_C_END
