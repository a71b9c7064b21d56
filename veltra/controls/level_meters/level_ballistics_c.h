// SPDX-License-Identifier: MIT
// For C and every language that can call it: the LevelBallistics of level_ballistics.h, how a level
// meter moves. Up at once, down at a steady rate, with a held maximum and a clip light that stays
// on. The host brings the clock and draws.
//
//     VLLevelBallistics* meter = VLLevelBallisticsCreate();
//     if (VLLevelBallisticsSetLevel(meter, level, false, now)) draw(meter);
//     if (VLLevelBallisticsTick(meter, now)) startTimer();           // while no level comes
//
// Levels are positions on the meter, linear from 0 to 1 at full scale; NaN counts as 0. Times are
// nanoseconds of any clock that does not go back. Each function does what the member of that name
// says. A null meter changes nothing and returns 0, false, or -1 where that means "none".
//
// Thread: one at a time. Realtime-safe: yes, but creating and destroying.
#pragma once

#include "veltra/c_linkage.h"

#include <stdbool.h>
#include <stdint.h>

VELTRA_C_BEGIN

// One meter's motion; hosts only ever hold pointers to one.
typedef struct VLLevelBallistics VLLevelBallistics;

// The caller destroys it with VLLevelBallisticsDestroy. Null when memory is out.
// Realtime-safe: no.
VELTRA_EXPORT VLLevelBallistics* VLLevelBallisticsCreate(void) VELTRA_NOEXCEPT;
VELTRA_EXPORT void VLLevelBallisticsDestroy(VLLevelBallistics* meter) VELTRA_NOEXCEPT;

// By how much the display falls per step time; 0.01 at the start. Below 0, infinite or NaN counts
// as 0: then it never falls.
VELTRA_EXPORT float VLLevelBallisticsFallBackStep(const VLLevelBallistics* meter) VELTRA_NOEXCEPT;
VELTRA_EXPORT void VLLevelBallisticsSetFallBackStep(VLLevelBallistics* meter,
                                                    float step) VELTRA_NOEXCEPT;

// Seconds; a thirtieth at the start. Below 0 or NaN counts as 0: then the display falls at once to
// the level given. Infinite: it never falls.
VELTRA_EXPORT double VLLevelBallisticsFallBackStepTime(const VLLevelBallistics* meter)
    VELTRA_NOEXCEPT;
VELTRA_EXPORT void VLLevelBallisticsSetFallBackStepTime(VLLevelBallistics* meter,
                                                        double seconds) VELTRA_NOEXCEPT;

// Seconds; 1.5 at the start. Below 0 or NaN counts as 0: a maximum is held until the next call.
// Infinite: until VLLevelBallisticsDropMaximum.
VELTRA_EXPORT double VLLevelBallisticsMaxLevelHoldTime(const VLLevelBallistics* meter)
    VELTRA_NOEXCEPT;
VELTRA_EXPORT void VLLevelBallisticsSetMaxLevelHoldTime(VLLevelBallistics* meter,
                                                        double seconds) VELTRA_NOEXCEPT;

// A level that was measured at `now`. Returns whether what is shown has to be drawn again; with
// `forceDisplay` always.
VELTRA_EXPORT bool VLLevelBallisticsSetLevel(VLLevelBallistics* meter, float level,
                                             bool forceDisplay, int64_t now) VELTRA_NOEXCEPT;

// Lets the display fall while no level comes, by one step, or by all the whole steps that have
// passed by `now`. It falls to the level given last, not to 0. Returns whether it goes on falling.
VELTRA_EXPORT bool VLLevelBallisticsTick(VLLevelBallistics* meter, int64_t now) VELTRA_NOEXCEPT;

// What was given last, what is shown, and the held maximum, 0 when none is held.
VELTRA_EXPORT float VLLevelBallisticsLevel(const VLLevelBallistics* meter) VELTRA_NOEXCEPT;
VELTRA_EXPORT float VLLevelBallisticsDisplayLevel(const VLLevelBallistics* meter) VELTRA_NOEXCEPT;
VELTRA_EXPORT float VLLevelBallisticsMaxDisplayLevel(const VLLevelBallistics* meter)
    VELTRA_NOEXCEPT;
VELTRA_EXPORT void VLLevelBallisticsDropMaximum(VLLevelBallistics* meter) VELTRA_NOEXCEPT;

// The clip light. It goes on when the display rises above 1, and goes off here only.
VELTRA_EXPORT bool VLLevelBallisticsPeak(const VLLevelBallistics* meter) VELTRA_NOEXCEPT;
VELTRA_EXPORT void VLLevelBallisticsSetPeak(VLLevelBallistics* meter, bool isOn) VELTRA_NOEXCEPT;

// Nanoseconds from `now` until a tick is due, and until the maximum has been held long enough; -1
// when there is nothing to wait for.
VELTRA_EXPORT int64_t VLLevelBallisticsTimeToTick(const VLLevelBallistics* meter,
                                                  int64_t now) VELTRA_NOEXCEPT;
VELTRA_EXPORT int64_t VLLevelBallisticsTimeToHoldEnd(const VLLevelBallistics* meter,
                                                     int64_t now) VELTRA_NOEXCEPT;

VELTRA_C_END
