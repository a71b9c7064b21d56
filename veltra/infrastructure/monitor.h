// SPDX-License-Identifier: MIT
// A recursive monitor for any object, found by the object's address.
//
//   const InMonitor guard(this);      // one thread at a time from here to the end of the block
//
// Monitors live in a table of their own, not in the objects: an object needs no room for one, and
// may die while its monitor is held. The table's entries are the guards themselves, on the stacks
// of the threads that hold them. So entering never allocates and never fails, and a block that is
// left by an exception or by the cancellation of its thread leaves the monitor, too.
//
// A forked child keeps the monitors that the forking thread holds. Those of other threads are free
// in the child, because these threads do not exist there. What they were changing may be half done:
// a child that does not exec should not use singletons or shared values that other threads may have
// been making.
#pragma once

#include "veltra/export.h"

#include <cstdint>

namespace veltra {

// Monitors are not fair: a thread that leaves and enters at once may overtake one that waits.
// Thread: any; a guard dies on the thread that made it, guards of one thread in reverse order.
// Realtime-safe: no, it waits.
class VELTRA_EXPORT InMonitor {
public:
    // Waits until no other thread is in the monitor of `object`. The address alone counts; it is
    // never read through and may be null.
    explicit InMonitor(const void* object) noexcept;
    InMonitor(const InMonitor&) = delete;
    InMonitor& operator=(const InMonitor&) = delete;
    ~InMonitor();

private:
    friend class MonitorTable;

    const void* m_object;
    const void* m_thread;          // who holds it
    InMonitor* m_next = nullptr;   // in the table
    InMonitor* m_outer = nullptr;  // the guard of this thread that holds the monitor already
    std::uint32_t m_waiting = 0;   // threads that sleep until this guard ends
};

}  // namespace veltra
