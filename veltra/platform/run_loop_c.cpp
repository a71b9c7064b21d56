// SPDX-License-Identifier: MIT
#include "veltra/platform/run_loop_c.h"

#include "veltra/platform/clock.h"
#include "veltra/platform/run_loop.h"

#include <algorithm>
#include <optional>

namespace veltra {

namespace {

// A VLRunLoop is the RunLoop itself, under a name that C can say.
RunLoop* loopOf(VLRunLoop* loop) noexcept {
    return reinterpret_cast<RunLoop*>(loop);
}

const RunLoop* loopOf(const VLRunLoop* loop) noexcept {
    return reinterpret_cast<const RunLoop*>(loop);
}

}  // namespace

VLRunLoop* VLRunLoopCurrent() noexcept {
    return reinterpret_cast<VLRunLoop*>(RunLoop::current());
}

int VLRunLoopDescriptor(VLRunLoop* loop) noexcept {
    return loop != nullptr ? loopOf(loop)->descriptor() : -1;
}

int64_t VLRunLoopTimeToDeadline(const VLRunLoop* loop) noexcept {
    if (loop == nullptr) return -1;
    const std::optional<Moment> deadline = loopOf(loop)->nextDeadline();
    const ClockReading now = Clocks::current().monotonic();
    if (!deadline.has_value() || now.hasFailed()) return -1;
    return std::max(*deadline - now.moment(), Nanoseconds()).count();
}

int VLRunLoopRunDue(VLRunLoop* loop) noexcept {
    return loop != nullptr ? loopOf(loop)->runDue() : 0;
}

}  // namespace veltra
