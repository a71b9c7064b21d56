// SPDX-License-Identifier: MIT
// What happens to locks when the process forks. The child has one thread, the forking one: a lock
// that another thread held stays held there for ever, unless somebody sees to it.
#pragma once

#include "veltra/base/adaptive_lock.h"

#include <cstdint>

namespace veltra {

enum class ForkPolicy : std::uint8_t {
    // The child finds the lock free. For state that is whole between any two instructions.
    ResetInChild,
    // fork() waits until it has the lock, copies the process, and gives the lock back on both
    // sides. For state that must be whole in the child. Whoever holds it must neither fork nor wait
    // for another lock of this policy.
    HoldAcross,
};

struct ForkHandler {
    AdaptiveLock& lock;  // must live as long as the process
    ForkPolicy policy;
};

// In force from now on, for every fork. A lock that was added before is left alone. There is room
// for 16 locks of each policy; one more ends the process with a message, because without its
// handler a child could wait for ever.
// Thread: any, also in the middle of a fork. Realtime-safe: no.
void addForkHandler(const ForkHandler& handler) noexcept;

// Calls `handler` in each forked child, on its only thread, once the locks above are free there:
// for what belonged to threads that the child does not have. Added again it is called once all the
// same. There is room for 16; one more ends the process with a message.
// Thread: any. Realtime-safe: no.
void addChildHandler(void (*handler)() noexcept) noexcept;

// Whether the calling thread is in the middle of a fork and holds `lock` for it: code that the
// fork's other handlers call then needs no lock, and must not wait for this one.
// Thread: any. Realtime-safe: yes.
bool isHeldByThisFork(const AdaptiveLock& lock) noexcept;

}  // namespace veltra
