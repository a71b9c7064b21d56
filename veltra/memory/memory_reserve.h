// SPDX-License-Identifier: MIT
// A cushion below malloc, for a host that must keep running when memory is out.
//
// While the reserve is entered, it stands in front of the process's allocations. When one fails for
// want of memory, the reserve frees memory that it holds, first the main reserve, then a final
// block, and the allocation is tried once more. The host is told by a callback and by the
// low-memory level. When enough has been freed, the main reserve is taken again. A realloc that
// fails frees nothing of the reserve; neither does a request that no heap can serve (a product that
// overflows, an alignment that is refused).
//
// The options come from the preference "MemoryReserve", a dictionary, read at the first Enter. Each
// start and each taking of the reserve writes a line to standard error. Where not every allocation
// of the process passes through the zone (see allocation_zone.h), the first Enter says in the log
// which ones the reserve cannot help.
#pragma once

#include "veltra/c_linkage.h"

#include <stddef.h>

VELTRA_C_BEGIN

// Called at every change of the level, in the middle of the malloc or free that caused it, on that
// thread, which may be any. No lock is held, and the level is set before. It should not allocate
// much itself.
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

// The outermost Enter takes the reserve and puts it in front of the process's allocations. When
// there is no memory for the reserve, it stands there with nothing to give. `callback` may be null;
// `context` is passed to it. Returns a block of 50 bytes, all 0, which the caller frees; null when
// memory is out.
// Thread: main, while no other thread allocates much. Realtime-safe: no.
VELTRA_EXPORT void* QKMemoryReserveEnter(QKMemoryReserveCallback callback,
                                         void* context) VELTRA_NOEXCEPT;

// The outermost Exit goes out of the way of the allocations and frees all that is held. Level and
// counters deliberately stay: the host may ask afterwards how it went.
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

// Returns 1 when `totalBytes` can be allocated in equal fragments of at least
// `minimumFragmentBytes`, else 0. Tries one fragment, then 2, 4 and so on, at most 32 times.
// Allocates and frees them without costing the reserve. Always 1 while there is no final block.
// Thread: any. Realtime-safe: no.
VELTRA_EXPORT int QKMemoryReserveTestAvailableMemory(size_t totalBytes,
                                                     size_t minimumFragmentBytes) VELTRA_NOEXCEPT;

// Asks for the main reserve to be taken again at the next free, however little that gives back. The
// thread of that free then takes it: hundreds of megabytes, and a line on standard error.
// Thread: any. Realtime-safe: yes.
VELTRA_EXPORT void QKMemoryReserveTryReserveReallocation(void) VELTRA_NOEXCEPT;

VELTRA_C_END
