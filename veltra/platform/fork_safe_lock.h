// SPDX-License-Identifier: MIT
// A lock for sections of a few microseconds whose state must be whole in a forked child.
//
// The forking thread owns the lock while the other handlers of the fork run; these may call in
// again, and pass.
#pragma once

#include "veltra/platform/fork_handlers.h"

namespace veltra {

// A holder must neither fork nor wait for another lock of this kind.
class ForkSafeLock {
public:
    constexpr ForkSafeLock() noexcept = default;
    ForkSafeLock(const ForkSafeLock&) = delete;
    ForkSafeLock& operator=(const ForkSafeLock&) = delete;

    void lock() noexcept {
        if (!isHeldByThisFork(m_lock)) m_lock.lock();
    }
    void unlock() noexcept {
        if (!isHeldByThisFork(m_lock)) m_lock.unlock();
    }

    // Forks hold the lock from here on; it must live as long as the process. Once is enough; again
    // does no harm.
    // Thread: any. Realtime-safe: no.
    void holdAcrossForks() noexcept { addForkHandler({m_lock, ForkPolicy::HoldAcross}); }

private:
    AdaptiveLock m_lock;
};

}  // namespace veltra
