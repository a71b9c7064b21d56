// SPDX-License-Identifier: MIT
// Who called: the frames of the calling thread's stack, from the innermost outwards. Needs no frame
// pointers, follows the unwinding tables that compilers write, and ends at code without them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace veltra {

// `cfa` and `function` together tell one call from every other one that is alive or was: the
// address alone is taken again by the next function called at the same depth.
struct FrameIdentity {
    std::uintptr_t cfa = 0;       // canonical frame address: the stack pointer before the call
    std::uintptr_t function = 0;  // where the function starts, or the part of it that is running

    friend bool operator==(const FrameIdentity&, const FrameIdentity&) noexcept = default;
};

struct StackFrame {
    std::uintptr_t returnAddress = 0;  // where the frame goes on when what it called returns
    FrameIdentity identity;

    friend bool operator==(const StackFrame&, const StackFrame&) noexcept = default;
};

// Returns which frame is wanted next: the first with a canonical frame address of at least that.
using FrameVisitor = std::uintptr_t (*)(void* context, const StackFrame& frame) noexcept;
inline constexpr std::uintptr_t kNextFrame = 0;
inline constexpr std::uintptr_t kNoMoreFrames = UINTPTR_MAX;  // ends the walk

// Visits the frames outside the code that stands between a caller and the allocator
// (zone_code.h): everything up to and with the innermost run of such code is left out, so there
// must be some on the stack. Allocates nothing and holds no lock while it visits.
// Thread: any. Realtime-safe: no.
void walkCallers(FrameVisitor visit, void* context) noexcept;

// The frame `up` calls above the zone's code (0: who called it); all zero when there is none.
// Thread: any. Realtime-safe: no.
FrameIdentity callerFrame(int up) noexcept;

// The calls that led here, innermost first: for each frame of the stack an address inside its call,
// ready to be given a name. The first is in the caller of this function; the first `skipped` are
// left out. Writes as many as fit, and returns how many that were. Allocates nothing and holds no
// lock.
// Thread: any. Realtime-safe: no.
std::size_t captureCalls(std::span<std::uintptr_t> addresses, std::size_t skipped) noexcept;

}  // namespace veltra
