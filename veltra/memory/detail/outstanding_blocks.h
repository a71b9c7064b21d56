// SPDX-License-Identifier: MIT
// The guarded allocator's count.
#pragma once

#include <cstdint>

namespace veltra {

// Blocks that the guarded allocator handed out and did not get back; approximate while several
// threads allocate, negative when it got more back than it handed out.
// Thread: any. Realtime-safe: yes.
std::int32_t outstandingBlocks() noexcept;

}  // namespace veltra
