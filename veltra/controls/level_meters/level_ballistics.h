// SPDX-License-Identifier: MIT
// How a level meter moves: up at once, down at a steady rate, with a held maximum and a clip light
// that stays on. No clock, no timer, no drawing: the caller says what time it is. A
// QkLevelMeterCell is this with a clock, two timers and a picture; use it alone to drive a meter of
// your own. For C: level_ballistics_c.h.
//
// Levels are positions on the meter, linear from 0 to 1 at full scale. NaN counts as 0, minus
// infinity likewise, plus infinity as any level above 1.
//
// Thread: one at a time. Realtime-safe: yes, all of it.
#pragma once

#include "veltra/base/time.h"
#include "veltra/export.h"

#include <optional>

namespace veltra {

class VELTRA_EXPORT LevelBallistics {
public:
    // By how much the display falls per fallBackStepTime(). Below 0, infinite or NaN counts
    // as 0: then it never falls.
    float fallBackStep() const noexcept { return m_fallBackStep; }
    void setFallBackStep(float step) noexcept;

    // Seconds. Below 0 or NaN counts as 0: then it falls at once to the level given.
    // Infinite: it never falls.
    double fallBackStepTime() const noexcept { return m_fallBackStepTime; }
    void setFallBackStepTime(double seconds) noexcept;

    // Seconds. Below 0 or NaN counts as 0: a maximum is held until the next call. Infinite:
    // until dropMaximum().
    double maxLevelHoldTime() const noexcept { return m_maxLevelHoldTime; }
    void setMaxLevelHoldTime(double seconds) noexcept;

    // A level that was measured at `now`, by any clock that does not go back (a `now` before the
    // last one counts as the last one). Returns whether what is shown has to be drawn
    // again: the level differs from the display by more than 0.01, a maximum begins or ends, the
    // clip light goes on, or `forceDisplayIfNeeded`.
    bool setLevel(float level, bool forceDisplayIfNeeded, Moment now) noexcept;

    // Lets the display fall while no level comes, by one step, or by all the whole steps that have
    // passed by `now` if there were more. That time is used up: the next setLevel() lets the
    // display fall for the rest only, so that it falls at the same rate however the two are mixed.
    // Returns whether it goes on falling.
    bool tick(Moment now) noexcept;

    // What setLevel() was told last: may be below 0, as displayLevel() never is.
    float level() const noexcept { return m_level; }
    float displayLevel() const noexcept { return m_displayLevel; }  // at most 1 + fallBackStep()
    float maxDisplayLevel() const noexcept { return m_maxDisplayLevel; }  // 0: none is held
    void dropMaximum() noexcept;

    // The clip light. Goes on when the display rises above 1; goes off here only.
    bool peak() const noexcept { return m_peak; }
    void setPeak(bool isOn) noexcept { m_peak = isOn; }

    // The time from `now` until a tick is due, not below 0; nothing when the display has come to
    // rest or falls in no other way than by setLevel().
    std::optional<Nanoseconds> timeToTick(Moment now) const noexcept;
    // The time from `now` until the held maximum has been held long enough; nothing without one.
    std::optional<Nanoseconds> timeToHoldEnd(Moment now) const noexcept;

private:
    double secondsSinceLastCall(Moment now) const noexcept;
    float restingLevel() const noexcept;
    float highestDisplay() const noexcept { return 1.0F + m_fallBackStep; }

    float m_level = 0.0F;
    float m_displayLevel = 0.0F;
    float m_maxDisplayLevel = 0.0F;
    bool m_peak = false;
    // A fall of 0.3 a second, on the decibel scale 20 dB in 1.7 s: the return time of studio peak
    // meters. 30 steps a second look smooth.
    float m_fallBackStep = 0.01F;
    double m_fallBackStepTime = 1.0 / 30.0;
    double m_maxLevelHoldTime = 1.5;  // long enough to read a maximum, short enough to see the next
    std::optional<Moment> m_lastCallDate;
    double m_holdAccumulateTime = 0.0;
};

}  // namespace veltra
