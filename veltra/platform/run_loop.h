// SPDX-License-Identifier: MIT
// The timers of one thread, in whatever event loop that thread runs. A RunLoop owns no thread and
// never waits: the host asks nextDeadline(), waits in its own way (or polls descriptor()), and
// calls runDue(). A driver for an event loop derives from it and is told each new deadline. For C:
// run_loop_c.h.
//
// Moments are those of Clocks::current().monotonic(). A clock that cannot be read fires nothing.
#pragma once

#include "veltra/base/time.h"
#include "veltra/base/weak_anchor.h"
#include "veltra/export.h"
#include "veltra/platform/run_loop_timer.h"

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <utility>

namespace veltra {

// Thread: the one thread that uses it, for everything in here. Realtime-safe: no.
class VELTRA_EXPORT RunLoop : public Anchored {
public:
    RunLoop() noexcept = default;
    RunLoop(const RunLoop&) = delete;
    RunLoop& operator=(const RunLoop&) = delete;

    // Its timers become invalid. Allowed also inside an action that the loop is running.
    ~RunLoop() override;

    // The loop of the calling thread: the one that was set; else a PollRunLoop, made on first use
    // and kept until the thread ends. Null when memory is out, and while the thread's own data is
    // being destroyed.
    static RunLoop* current() noexcept;

    // Makes `loop` (not owned) the calling thread's; null goes back to the platform's own. Returns
    // the one that was set before, or null. A loop that is destroyed on its thread unsets itself.
    static RunLoop* setCurrent(RunLoop* loop) noexcept;

    // Starts a timer; its first tick is one interval from now. Null when memory is out or the clock
    // cannot be read.
    std::shared_ptr<RunLoopTimer> schedule(const TimerRequest& request) noexcept;

    // When runDue() has something to do next in the present mode; nothing when no timer waits. A
    // moment in the past means at once.
    std::optional<Moment> nextDeadline() const noexcept;

    // Fires each timer of the present mode that is due, earliest first, older first among equals,
    // and returns how many. Ticks that were missed, or fall due while the timer's own action runs,
    // are skipped: the timer keeps its schedule. An action may start, stop and delete timers,
    // delete the loop, and run a nested loop that calls runDue() again; a timer does not fire
    // inside its own action. An exception from an action passes through; the timers that were due
    // after it fire at the next call.
    int runDue();

    // The innermost living scope's mode; Default outside of any.
    RunLoopMode mode() const noexcept { return m_mode; }

    // How many calls of runDue() are on the stack: 0 outside of any timer's action.
    int depth() const noexcept { return m_depth; }

    // Sets a loop's mode for as long as the scope lives; scopes end in the opposite order of their
    // beginning. A loop that dies first is left alone.
    class VELTRA_EXPORT ModeScope {
    public:
        // Sets the mode of `loop`, which may die before the scope.
        ModeScope(RunLoop& loop, RunLoopMode mode) noexcept;
        ModeScope(const ModeScope&) = delete;
        ModeScope& operator=(const ModeScope&) = delete;
        ~ModeScope();

    private:
        const WeakPointer<RunLoop> m_loop;
        const RunLoopMode m_before;
    };

    // A file descriptor that polls readable once runDue() has something to do and until it was
    // called; owned by the loop, never to be read by others. -1 when this kind of loop has none.
    virtual int descriptor() noexcept { return -1; }

protected:
    // Told after each change of nextDeadline(), and in each runDue() even without a change, so that
    // a wake-up that was used up is armed again. Must not call back into the loop, nextDeadline()
    // excepted.
    virtual void deadlineChanged(std::optional<Moment> /*deadline*/) noexcept {}

private:
    friend class RunLoopTimer;

    class DepthScope;

    using Place = std::pair<Moment, std::uint64_t>;  // due time, serial number
    using Timers = std::map<Place, std::shared_ptr<RunLoopTimer>>;

    const std::shared_ptr<RunLoopTimer>* firstRunnable() const noexcept;
    Timers& timersBeside(const RunLoopTimer& timer) noexcept;
    void runOne(const std::shared_ptr<RunLoopTimer>& timer, Moment now);
    void moveTo(RunLoopTimer& timer, Moment due) noexcept;
    void remove(RunLoopTimer& timer) noexcept;
    void setMode(RunLoopMode mode) noexcept;
    void announceDeadline() noexcept;

    // By the set of modes that they run in, so that a mode never walks past the timers of others.
    std::array<Timers, kAllRunLoopModes.bits() + 1> m_timers;
    std::uint64_t m_lastSerial = 0;
    RunLoopMode m_mode = RunLoopMode::Default;
    int m_depth = 0;
    std::optional<Moment> m_announcedDeadline;
    bool m_isAnnounced = true;
};

}  // namespace veltra
