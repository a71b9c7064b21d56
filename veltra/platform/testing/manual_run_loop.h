// SPDX-License-Identifier: MIT
// Time by hand: a clock that stands still until it is told to go on, and a run loop on it. While
// one lives it is the clock of the process and the run loop of its thread.
#pragma once

#include "veltra/platform/clock.h"
#include "veltra/platform/run_loop.h"

#include <optional>

namespace veltra::testing {

class ManualClocks final : public Clocks {
public:
    ManualClocks() noexcept : m_before(Clocks::install(this)) {}
    ~ManualClocks() override { Clocks::install(m_before); }

    // `tick` passes after each reading.
    ClockReading monotonic() const noexcept override {
        if (error != 0) return ClockReading::failed(error);
        const Moment reading = now;
        now += tick;
        return reading;
    }
    WallTime wall() const noexcept override { return wallTime; }

    mutable Moment now{veltra::seconds(1000.0)};
    Nanoseconds tick;
    int error = 0;
    WallTime wallTime;

private:
    const Clocks* m_before;
};

class ManualRunLoop final : public RunLoop {
public:
    ManualRunLoop() noexcept : m_before(RunLoop::setCurrent(this)) {}
    ~ManualRunLoop() override { RunLoop::setCurrent(m_before); }

    // Lets time pass, and runs each deadline at its own moment and in order. May be called inside
    // an action: that is the nested loop. Must not be called when the clock has an error.
    void advance(double seconds) {
        const WeakPointer<RunLoop> self(this);
        ManualClocks& clock = clocks;
        const Moment end = clock.now + veltra::seconds(seconds);
        for (auto deadline = nextDeadline(); deadline && *deadline <= end;
             deadline = nextDeadline()) {
            if (*deadline > clock.now) clock.now = *deadline;
            runDue();
            if (!self) return;
        }
        if (clock.now < end) clock.now = end;
    }

    ManualClocks clocks;
    std::optional<Moment> announced;  // the deadline that the loop last told its driver
    int announcements = 0;

protected:
    void deadlineChanged(std::optional<Moment> deadline) noexcept override {
        announced = deadline;
        ++announcements;
    }

private:
    RunLoop* m_before;
};

}  // namespace veltra::testing
