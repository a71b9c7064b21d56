// SPDX-License-Identifier: MIT
// How far one movement of the pointer, one turn of the wheel or one press of an arrow key changes a
// number.
//
// Thread: any. Realtime-safe: yes.
#pragma once

#include "veltra/base/modifier_flags.h"
#include "veltra/export.h"

#include <cstdint>

namespace veltra {

struct VELTRA_EXPORT NumberSteps {
    // The smallest step of a drag, and the step of the wheel.
    std::int32_t minimumDelta = 1;
    // While Shift is held, and while Control or Command is: the step of the wheel and of the arrow
    // keys, and of each point of a drag. 0: the key changes nothing. With both held, Shift counts.
    std::int32_t fine = 0;
    std::int32_t coarse = 0;

    // A drag from one height to another, in points: one for each point, rounded up, but never less
    // than minimumDelta in either direction. 0 when it rounds to nothing. Upwards is positive;
    // `isFlipped` says that y points down. NaN counts as no movement.
    std::int32_t dragged(float previousY, float currentY, bool isFlipped,
                         ModifierFlags modifiers = {}) const noexcept;

    // A turn of the wheel, however far: one step in its direction; 0 for 0 and NaN.
    std::int32_t wheeled(float deltaY, ModifierFlags modifiers = {}) const noexcept;

    // The Up key. At first exactly 1: deliberately not minimumDelta, so that keys reach each value.
    std::int32_t keyed(ModifierFlags modifiers = {}) const noexcept;

private:
    std::int32_t stepUnder(ModifierFlags modifiers) const noexcept;
};

// The sum, kept within 32 bits.
VELTRA_EXPORT std::int32_t numberChangedBy(std::int32_t number, std::int64_t change) noexcept;

// Movement that comes in parts, of which only whole steps can be used. The parts are not lost: the
// steps taken never differ from the way gone by one or more.
class VELTRA_EXPORT WholeSteps {
public:
    // Forgets what is left over: before a new movement.
    void reset() noexcept { m_rest = 0.0F; }

    // `way` more: what to step by now, rounded up, with what is left over from before.
    float roundedUp(float way) noexcept;
    // The same, rounded towards 0.
    float truncated(float way) noexcept;

    // The nearest 256th of a point: what is finer is noise of the arithmetic. 0 for NaN and
    // infinity.
    static float onGrid(float points) noexcept;

private:
    float m_rest = 0.0F;
};

}  // namespace veltra
