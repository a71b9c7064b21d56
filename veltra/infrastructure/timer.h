// SPDX-License-Identifier: MIT
// A timer for controls and animations that can be started again and again. It goes on firing while
// a menu or slider is tracked and while a modal panel runs. For C: timer_c.h.
//
//   QkTimer m_decay{0.05, this, action<&Meter::decay>(), nullptr};
//   void Meter::decay(QkTimer& timer);      // may restart, stop or delete the timer, or the meter
#pragma once

#include "veltra/base/action.h"
#include "veltra/base/weak_anchor.h"
#include "veltra/export.h"
#include "veltra/platform/run_loop_timer.h"

#include <memory>

namespace veltra {

class QkTimer;

// Stands between a QkTimer and the run loop's timer: passes the tick on to the target, with the
// QkTimer as sender. Thread: the run loop's, in practice main. Realtime-safe: no.
class VELTRA_EXPORT QkTimerProxy : public Anchored {
public:
    // Passes nothing on.
    QkTimerProxy() noexcept = default;

    // None of the objects is retained; any may be null, and then nothing is passed on.
    QkTimerProxy(Anchored* target, Action selector, void* userInfo, QkTimer* owner) noexcept;
    QkTimerProxy(const QkTimerProxy&) = delete;
    QkTimerProxy& operator=(const QkTimerProxy&) = delete;
    ~QkTimerProxy() override;

    // The tick of the run loop's timer. Invalidates an owner that fires once, so that it may be
    // started again by what follows, then sends the selector to the target with the owner as
    // sender. Nothing is sent when the owner or the target is gone or the target does not respond.
    // The target may delete the owner and this proxy with it.
    void action(RunLoopTimer& timer);

    // Null when the target is gone.
    Anchored* target() const noexcept { return m_target.get(); }
    Action selector() const noexcept { return m_selector; }
    void* userInfo() const noexcept { return m_userInfo; }

private:
    WeakPointer<Anchored> m_target;
    Action m_selector;
    void* m_userInfo = nullptr;    // the caller's, not retained
    WeakPointer<QkTimer> m_owner;  // has this proxy as a member
};

// Thread: one, whose run loop the timer runs on; in practice main. Realtime-safe: no.
class VELTRA_EXPORT QkTimer : public Anchored {
public:
    // Stores all and starts nothing. `seconds` is the interval of start(): 0, a negative number or
    // NaN counts as 0.1 ms, infinite never fires. `target` (not retained) receives `action`, whose
    // sender is this timer; nothing happens when the target is gone or does not respond.
    // `userInfo` is the caller's and comes back through userInfo().
    QkTimer(double seconds, Anchored* target, Action action, void* userInfo,
            bool repeats = true) noexcept;
    QkTimer(const QkTimer&) = delete;
    QkTimer& operator=(const QkTimer&) = delete;

    // Nothing fires any more. Allowed also inside the timer's own action.
    ~QkTimer() override;

    // startWithTimeInterval() with the interval given at construction.
    void start() noexcept;

    // Schedules the timer on the thread's current run loop, the first tick one interval from now. A
    // running timer ignores this: it is neither restarted nor given the new interval. The interval
    // of start() stays what it was. When the loop cannot take the timer (no memory, no clock) the
    // timer stays idle, as isValid() tells.
    //
    // A timer does not fire while its own action runs, not even in a nested loop there. But one
    // that the action stops and starts again is newly scheduled, and does fire in a nested loop
    // that follows: such an action must expect to be called again before it has returned.
    void startWithTimeInterval(double seconds) noexcept;

    // Both make the timer idle; it can be started again.
    void stop() noexcept;
    void invalidate() noexcept;

    // Sends the action now, if the timer runs. A repeating timer keeps its schedule; any other
    // becomes idle before the action is sent.
    void fire();

    // Both tell whether the timer runs. False before the first start, and inside the action of a
    // timer that does not repeat, which is thus free to start it again.
    bool isValid() const noexcept;
    bool isActive() const noexcept;

    // Whether it goes on firing until it is stopped, rather than fire once for each start.
    bool isRepeating() const noexcept { return m_repeats; }

    // What the owner gave when it was made; the timer does not look at it.
    void* userInfo() const noexcept { return m_proxy.userInfo(); }

private:
    std::shared_ptr<RunLoopTimer> m_timer;  // null before the first start, kept when invalid
    const double m_interval;                // seconds
    const bool m_repeats;
    QkTimerProxy m_proxy;
};

}  // namespace veltra
