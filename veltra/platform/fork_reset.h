// SPDX-License-Identifier: MIT
// Locks that a forked child finds free. For state that is whole between any two instructions, so
// that only the lock needs care: its holder may be a thread that the child does not have.
#pragma once

#include "veltra/base/adaptive_lock.h"

namespace veltra {

// From now on every forked child starts with `lock` (which must live as long as the process) free.
// A lock that was named before is left alone; there is room for eight.
// Thread: any. Realtime-safe: no.
void resetInChildren(AdaptiveLock& lock) noexcept;

}  // namespace veltra
