// SPDX-License-Identifier: MIT
// The timer of a run loop: sends an action to a target after an interval, once or again and again.
#pragma once

#include "veltra/base/action.h"
#include "veltra/base/flags.h"
#include "veltra/base/time.h"
#include "veltra/base/weak_anchor.h"
#include "veltra/export.h"

#include <cstdint>
#include <memory>

namespace veltra {

class RunLoop;

// The state of a run loop's caller: what the user is doing decides which timers may run.
enum class RunLoopMode : std::uint8_t {
    Default = 1,
    EventTracking = 2,  // a menu, slider or knob follows the pointer
    ModalPanel = 4,     // a modal panel runs
};

// Modes join to a set by `|`.
template <>
inline constexpr bool isFlag<RunLoopMode> = true;

// The modes that a timer runs in. With none of them it never fires.
using RunLoopModes = Flags<RunLoopMode>;

// Whatever the user is doing.
inline constexpr RunLoopModes kAllRunLoopModes =
    RunLoopMode::Default | RunLoopMode::EventTracking | RunLoopMode::ModalPanel;

// What a timer is made of.
struct TimerRequest {
    Nanoseconds interval{};      // 0 or negative counts as 0.1 ms; longest() never fires
    Anchored* target = nullptr;  // not retained; once it is gone the timer sends nothing
    Action action{};             // sent with the RunLoopTimer as sender
    void* userInfo = nullptr;    // the caller's
    bool repeats = false;        // false: fires once, then is invalid
    RunLoopModes modes = RunLoopMode::Default;  // while the loop is in another, the timer waits
};

// Made by RunLoop::schedule(), which shares its ownership with the caller until the timer becomes
// invalid: by invalidate(), because it was to fire once, or because its loop is gone. An invalid
// timer stays invalid. Thread: the loop's.
class VELTRA_EXPORT RunLoopTimer final : public Anchored,
                                         public std::enable_shared_from_this<RunLoopTimer> {
    struct Making {
        explicit Making() = default;
    };

public:
    // Not for callers, who cannot name a Making: see RunLoop::schedule().
    RunLoopTimer(Making /*only RunLoop makes them*/, const TimerRequest& request) noexcept;

    // Whether it is still scheduled. False already inside the action of a timer that fires once.
    // Realtime-safe: yes.
    bool isValid() const noexcept { return m_loop != nullptr; }

    // Takes the timer off its loop. Safe at any time, also inside the timer's own action, after
    // which it does not fire again. Realtime-safe: no.
    void invalidate() noexcept;

    // Sends the action now; nothing when invalid. A repeating timer keeps its schedule, any other
    // becomes invalid first. Realtime-safe: no.
    void fire();

    // The time between two ticks, after the correction of TimerRequest. Realtime-safe: yes.
    Nanoseconds interval() const noexcept { return m_interval; }

    // Whether it fires until it is invalidated, rather than once. Realtime-safe: yes.
    bool isRepeating() const noexcept { return m_repeats; }

    // What the caller gave with the request; the timer does not look at it. Realtime-safe: yes.
    void* userInfo() const noexcept { return m_userInfo; }

private:
    friend class RunLoop;

    Moment nextTickAfter(Moment now) const noexcept;
    void send();

    const WeakPointer<Anchored> m_target;
    const Action m_action;
    void* const m_userInfo;
    const Nanoseconds m_interval;  // above 0
    const bool m_repeats;
    const RunLoopModes m_modes;

    RunLoop* m_loop = nullptr;       // set while scheduled
    Moment m_due = Moment::never();  // with m_serial its place in the loop's order
    std::uint64_t m_serial = 0;
    bool m_isFiring = false;
};

}  // namespace veltra
