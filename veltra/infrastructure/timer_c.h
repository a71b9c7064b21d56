// SPDX-License-Identifier: MIT
// For C and every language that can call it: the QkTimer of timer.h, which calls a function after a
// while, once or again and again. It fires where the run loop of its thread is driven: by a host in
// C with veltra/platform/run_loop_c.h, by one in C++ with its own loop.
//
//     VLTimer* decay = VLTimerCreate(0.05, true, lowerTheMeter, meter);
//     VLTimerStart(decay);
//
// Thread: the one that starts it. Realtime-safe: no.
#pragma once

#include "veltra/c_linkage.h"

#include <stdbool.h>

VELTRA_C_BEGIN

// One timer; hosts only ever hold pointers to one.
typedef struct VLTimer VLTimer;

// Called at each tick. It may start, stop and destroy timers, its own too, and run a nested loop.
// It must not throw.
typedef void (*VLTimerCallback)(VLTimer* timer, void* context);

// A timer that calls `callback` with itself and `context` every `seconds`, or once; it starts with
// VLTimerStart. An interval of 0, a negative one and NaN count as 0.1 ms; infinite never fires.
// The caller destroys it with VLTimerDestroy, also inside its own callback; then nothing fires any
// more. Null when `callback` is null or memory is out.
VELTRA_EXPORT VLTimer* VLTimerCreate(double seconds, bool repeats, VLTimerCallback callback,
                                     void* context) VELTRA_NOEXCEPT;
VELTRA_EXPORT void VLTimerDestroy(VLTimer* timer) VELTRA_NOEXCEPT;  // null: nothing

// Schedules the timer on the calling thread's run loop, the first tick one interval from now. A
// timer that runs ignores this. Returns whether it runs now; false for null, and when the loop
// cannot take it (no memory, no clock).
VELTRA_EXPORT bool VLTimerStart(VLTimer* timer) VELTRA_NOEXCEPT;

// Makes the timer idle; it can be started again. Null: nothing.
VELTRA_EXPORT void VLTimerStop(VLTimer* timer) VELTRA_NOEXCEPT;

// Calls the callback now, if the timer runs. A repeating timer keeps its schedule; any other
// becomes idle before. Null: nothing.
VELTRA_EXPORT void VLTimerFire(VLTimer* timer) VELTRA_NOEXCEPT;

// False before the first start, and inside the callback of a timer that does not repeat, which is
// thus free to start it again. Null: false.
VELTRA_EXPORT bool VLTimerIsActive(const VLTimer* timer) VELTRA_NOEXCEPT;

VELTRA_C_END
