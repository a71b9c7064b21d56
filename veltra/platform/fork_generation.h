// SPDX-License-Identifier: MIT
// Tells a forked child from its parent.
#pragma once

#include <cstdint>

namespace veltra {

// A number that a process shares with no ancestor of its own: what was kept under another number
// was inherited. It also differs in children that no fork handler has seen (_Fork, a bare system
// call). 0 where the system cannot tell; nothing that belongs to one process should be kept then.
// Thread: any. Realtime-safe: no (the first call in a process enters the kernel).
std::uint32_t forkGeneration() noexcept;

}  // namespace veltra
