// SPDX-License-Identifier: MIT
// The leak guard between the process and its allocations.
#pragma once

#include "veltra/memory/detail/leak_guard_history.h"
#include "veltra/platform/stack_walk.h"

namespace veltra::detail {

// What this thread allocates during its life belongs to the guard and is not recorded.
class Unrecorded {
public:
    Unrecorded() noexcept;
    Unrecorded(const Unrecorded&) = delete;
    Unrecorded& operator=(const Unrecorded&) = delete;
    ~Unrecorded();

private:
    bool m_before;
};

// Wraps the zone in force, for the rest of the process's life. Call once, first.
void wrapZoneForLeakGuard() noexcept;

// False when memory is out. `frame` lies on the calling thread's stack.
bool openLeakScope(const FrameIdentity& frame) noexcept;

// Nothing happens when no such scope is open. A `function` of 0 stands for any: the newest scope of
// that address is closed.
void closeLeakScope(const FrameIdentity& frame) noexcept;

// Empties the history. The caller owns the records, newest first, linked by `next`.
LeakRecord* takeLeakRecords() noexcept;
void freeLeakRecord(LeakRecord* record) noexcept;

}  // namespace veltra::detail
