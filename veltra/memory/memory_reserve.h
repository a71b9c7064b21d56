// SPDX-License-Identifier: MIT
// A cushion below malloc, for a host that must keep running when memory is out.
//
// While the reserve is entered the process's allocation zone is wrapped: an allocation that fails
// makes the reserve give up memory that it holds, first the main reserve, then a final block, and
// is tried once more. The host is told by a callback and by the low-memory level. When enough has
// been freed the main reserve is taken again. Growing a block in place (realloc) releases nothing.
//
// The options come from the preference "MemoryReserve", a dictionary, read at the first Enter. Each
// start and each taking of the reserve writes a line to standard error. Where the process's
// allocations do not pass through the zone (see allocation_zone.h) the reserve has no effect, which
// the first Enter says in the log.
#pragma once

#include "veltra/c_linkage.h"

#include <stddef.h>

VELTRA_C_BEGIN

// Called at every change of the level, in the middle of the allocation or deallocation that caused
// it, on that thread and without a lock; the level is set before. Should not allocate much itself.
typedef void (*QKMemoryReserveCallback)(void* context);

// Indexes of the options, with their preference keys and defaults; sizes in MiB.
enum {
    kMemoryReserveMaxSensibleSize = 0,   // "MaxSensibleSize", 100: a failed request above this
                                         // does not cost the final block; also how much must be
                                         // freed until the reserve is taken again
    kMemoryReserveBlockSize = 1,         // "BlockSize", 500: main reserve; 0 or less: no reserve
    kMemoryReserveFinalBlockSize = 2,    // "FinalBlockSize", 100
    kMemoryReserveMemAvailSize = 3,      // "MemAvailSize", 200: for the host, a total to test for
    kMemoryReserveMemAvailFragment = 4,  // "MemAvailFragment", 10: for the host, the least fragment
    kMemoryReserveVerbose = 5            // "Verbose", 0: stored only
};

// Other indexes do nothing. What the preferences set wins at the first Enter.
// Thread: main. Realtime-safe: yes.
VELTRA_EXPORT void QKMemoryReserveSetOption(int index, long value) VELTRA_NOEXCEPT;

// 0 for other indexes.
// Thread: any. Realtime-safe: yes.
VELTRA_EXPORT long QKMemoryReserveGetOption(int index) VELTRA_NOEXCEPT;

// Takes the reserve and wraps the zone, at the outermost Enter; a reserve that is not to be had
// leaves the zone wrapped with nothing to release. `callback` may be null; `context` is passed to
// it. Always answers a block of 50 bytes, all 0, which the caller frees; null when memory is out.
// Thread: main, while no other thread allocates much. Realtime-safe: no.
VELTRA_EXPORT void* QKMemoryReserveEnter(QKMemoryReserveCallback callback,
                                         void* context) VELTRA_NOEXCEPT;

// The outermost Exit unwraps the zone and gives all back. Level and counters deliberately stay:
// the host may ask afterwards how it went.
// Thread: main, while no other thread allocates much. Realtime-safe: no.
VELTRA_EXPORT void QKMemoryReserveExit(void) VELTRA_NOEXCEPT;

// 0 normal, 1 the main reserve is released, 2 the final block, too. A final block does not come
// back before the next outermost Enter, but taking the main reserve again ends level 2 as well.
// Thread: any. Realtime-safe: yes.
VELTRA_EXPORT int QKMemoryReserveGetLowMemoryLevel(void) VELTRA_NOEXCEPT;

// The level that the last release led to, 1 or 2; 0 when there was none since the last call with
// `reset` not 0. The way back to level 0 deliberately does not count.
// Thread: any. Realtime-safe: yes.
VELTRA_EXPORT int QKMemoryReserveDidLowMemoryLevelChange(int reset) VELTRA_NOEXCEPT;

// How many availability tests failed since the last call with `reset` not 0.
// Thread: any. Realtime-safe: yes.
VELTRA_EXPORT int QKMemoryReserveDidProbingFail(int reset) VELTRA_NOEXCEPT;

// Whether `totalBytes` are to be had, in equal fragments of at least `minimumFragmentBytes`: 1, 2,
// 4 and so on, at most 32 sizes. Allocates and frees them, without costing the reserve. Always 1
// while the final block is absent.
// Thread: any. Realtime-safe: no.
VELTRA_EXPORT int QKMemoryReserveTestAvailableMemory(size_t totalBytes,
                                                     size_t minimumFragmentBytes) VELTRA_NOEXCEPT;

// Asks for the main reserve to be taken again at the next deallocation, however little was freed.
// Thread: any. Realtime-safe: yes.
VELTRA_EXPORT void QKMemoryReserveTryReserveReallocation(void) VELTRA_NOEXCEPT;

VELTRA_C_END
