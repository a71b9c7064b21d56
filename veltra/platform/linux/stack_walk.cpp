// SPDX-License-Identifier: MIT
#include "veltra/platform/stack_walk.h"

#include "veltra/platform/linux/stack_walkers.h"
#include "veltra/platform/zone_code.h"

#include <unwind.h>

namespace veltra {

namespace {

// The canonical frame address of the frame before.
std::uintptr_t stackPointerIn(_Unwind_Context* unwinder) noexcept {
#ifdef __ARM_EABI_UNWINDER__
    // 32-bit ARM has tables of its own, whose runtime answers any number there.
    constexpr int kStackPointer = 13;
    return _Unwind_GetGR(unwinder, kStackPointer);
#else
    return _Unwind_GetCFA(unwinder);
#endif
}

// The unwinder shows a frame while its stack pointer is known, which is the canonical frame address
// of the frame before: every frame is visited one step late.
struct Walk {
    FrameVisitor visit;
    void* context;
    std::size_t leftOut;
    std::uintptr_t wanted;
    StackFrame frame;
    ZoneExit zone;
    bool isWaiting = false;  // `frame` is to be visited
};

_Unwind_Reason_Code step(_Unwind_Context* unwinder, void* argument) noexcept {
    Walk& walk = *static_cast<Walk*>(argument);
    walk.frame.identity.cfa = stackPointerIn(unwinder);
    if (walk.isWaiting && walk.leftOut > 0) {
        --walk.leftOut;
    } else if (walk.isWaiting && walk.frame.identity.cfa >= walk.wanted) {
        walk.wanted = walk.visit(walk.context, walk.frame);
        if (walk.wanted == kNoMoreFrames) return _URC_END_OF_STACK;
    }
    walk.frame.returnAddress = _Unwind_GetIP(unwinder);
    walk.frame.identity.function = _Unwind_GetRegionStart(unwinder);
    walk.isWaiting = walk.zone.isOutside(walk.frame.returnAddress);
    return _URC_NO_REASON;
}

struct Capture {
    std::span<std::uintptr_t> addresses;
    std::size_t skipped;
    std::size_t count = 0;
};

_Unwind_Reason_Code capture(_Unwind_Context* unwinder, void* argument) noexcept {
    Capture& calls = *static_cast<Capture*>(argument);
    int isBeforeInstruction = 0;  // where a signal has interrupted
    const std::uintptr_t address = _Unwind_GetIPInfo(unwinder, &isBeforeInstruction);
    if (address == 0 || calls.count == calls.addresses.size()) return _URC_END_OF_STACK;
    if (calls.skipped > 0) {
        --calls.skipped;
    } else {
        // A return address may belong to the next function already.
        calls.addresses[calls.count++] = isBeforeInstruction != 0 ? address : address - 1;
    }
    return _URC_NO_REASON;
}

}  // namespace

bool ZoneExit::isZone(std::uintptr_t returnAddress) noexcept {
    return isZoneCode(returnAddress - 1);
}

void walkByUnwinder(FrameVisitor visit, void* context, const TableWalk& before) noexcept {
    Walk walk{visit, context, before.passed, before.wanted, {}, {}};
    _Unwind_Backtrace(step, &walk);
}

void walkCallers(FrameVisitor visit, void* context) noexcept {
    const TableWalk walk = walkByTables(visit, context);
    if (!walk.isDone) walkByUnwinder(visit, context, walk);
}

[[gnu::noinline]] std::size_t captureCalls(std::span<std::uintptr_t> addresses,
                                           std::size_t skipped) noexcept {
    constexpr std::size_t kOwn = 1;  // the frame of this function
    Capture calls{addresses, skipped < SIZE_MAX ? skipped + kOwn : skipped};
    _Unwind_Backtrace(capture, &calls);
    return calls.count;
}

FrameIdentity callerFrame(int up) noexcept {
    struct Search {
        int left;
        FrameIdentity found;
    } search{up, {}};
    walkCallers(
        [](void* context, const StackFrame& frame) noexcept {
            auto& state = *static_cast<Search*>(context);
            if (state.left-- > 0) return kNextFrame;
            state.found = frame.identity;
            return kNoMoreFrames;
        },
        &search);
    return search.found;
}

}  // namespace veltra
