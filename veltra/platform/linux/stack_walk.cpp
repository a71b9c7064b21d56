#include "veltra/platform/stack_walk.h"

#include "veltra/platform/detail/zone_code.h"

#include <unwind.h>

namespace veltra {

namespace {

// The unwinder shows a frame while its stack pointer is known, which is the canonical frame address
// of the frame before: every frame is visited one step late.
struct Walk {
    FrameVisitor visit;
    void* context;
    StackFrame frame;
    bool wasInZone = false;
    bool isOutside = false;  // `frame` is to be visited
};

_Unwind_Reason_Code step(_Unwind_Context* unwinder, void* argument) noexcept {
    Walk& walk = *static_cast<Walk*>(argument);
    walk.frame.identity.cfa = _Unwind_GetCFA(unwinder);
    if (walk.isOutside && !walk.visit(walk.context, walk.frame)) return _URC_END_OF_STACK;
    walk.frame.returnAddress = _Unwind_GetIP(unwinder);
    walk.frame.identity.function = _Unwind_GetRegionStart(unwinder);
    if (!walk.isOutside) {
        const bool isInZone = isZoneCode(walk.frame.returnAddress - 1);
        walk.isOutside = walk.wasInZone && !isInZone;
        walk.wasInZone = isInZone;
    }
    return _URC_NO_REASON;
}

}  // namespace

void walkCallers(FrameVisitor visit, void* context) noexcept {
    Walk walk{visit, context, {}};
    _Unwind_Backtrace(step, &walk);
}

FrameIdentity callerFrame(int up) noexcept {
    struct Search {
        int left;
        FrameIdentity found;
    } search{up, {}};
    walkCallers(
        [](void* context, const StackFrame& frame) noexcept {
            auto& state = *static_cast<Search*>(context);
            if (state.left-- > 0) return true;
            state.found = frame.identity;
            return false;
        },
        &search);
    return search.found;
}

}  // namespace veltra
