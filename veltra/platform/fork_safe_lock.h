// SPDX-License-Identifier: MIT
// A lock for sections of a few microseconds whose state must be whole in a forked child: fork()
// waits until it has the lock, copies the process, and gives it back on both sides.
//
// The forking thread owns the lock while the other handlers of the fork run; these may call in
// again, and pass.
#pragma once

#include "veltra/base/adaptive_lock.h"

namespace veltra {

// A holder must neither fork nor wait for another lock of this kind.
class ForkSafeLock {
public:
    constexpr ForkSafeLock() noexcept = default;
    ForkSafeLock(const ForkSafeLock&) = delete;
    ForkSafeLock& operator=(const ForkSafeLock&) = delete;

    void lock() noexcept;
    void unlock() noexcept;

    // Forks hold the lock from here on, which must live as long as the process; there is room for
    // four such locks. Once is enough; again does no harm.
    // Thread: any. Realtime-safe: no.
    void holdAcrossForks() noexcept;

private:
    friend struct ForkHandlers;
    AdaptiveLock m_lock;
};

}  // namespace veltra
