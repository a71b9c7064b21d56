// SPDX-License-Identifier: MIT
// What a slider does with points and steps, without a view: where a pointer stands for which value,
// how a knob is grabbed, values that capture the knob, and how the wheel adds up.
//
// Thread: one at a time. Realtime-safe: yes.
#pragma once

#include "veltra/export.h"
#include "veltra/ui/geometry.h"

#include <span>

namespace veltra {

// The way of a knob along its track. All lengths in points.
struct VELTRA_EXPORT SliderTravel {
    Rect track;               // what the knob as a whole moves in
    float knob = 0.0F;        // length of the knob along the track
    bool isVertical = false;  // the knob moves along the y axis
    bool isFlipped = false;   // the y axis points down
    double minimum = 0.0;     // the value at one end of the track
    double maximum = 1.0;     // at the other end; not below `minimum`

    // Of a point or a rectangle, along the track.
    float along(Point point) const noexcept { return isVertical ? point.y : point.x; }
    float origin() const noexcept { return along(track.origin); }
    // How far the knob can move; not above 0 when it has no room.
    float span() const noexcept;
    // Whether values fall where coordinates rise.
    bool isReversed() const noexcept { return isVertical && isFlipped; }

    // The value of the knob when the pointer that holds it at `grabOffset` from its middle is at
    // `position`. Distances are whole points, rounded to the side of the smaller value. A knob
    // without room has `present`.
    double valueAt(float position, float grabOffset, double present) const noexcept;

    // Where the knob begins, on the side of the smaller coordinates, for a value.
    float knobOriginOf(double value) const noexcept;
    float middleOf(double value) const noexcept { return knobOriginOf(value) + knob * 0.5F; }

    // How far from the knob's middle a pointer at `position` holds it, in whole points.
    float grabOffsetAt(float position, double value) const noexcept;

    // 1 for a movement to larger values (to the right, or upwards on screen), -1 for the opposite,
    // 0 when nothing moves along the track.
    int directionOf(Point from, Point to) const noexcept;
};

// The first of the marks that lies closer to the value than `delta`, else the value.
VELTRA_EXPORT double magneticValue(double value, std::span<const double> marks,
                                   double delta) noexcept;

// The same for a step from one value to another, as of the wheel: a mark that holds the value
// already lets it go, whatever the size of the step.
VELTRA_EXPORT double magneticStep(double from, double to, std::span<const double> marks,
                                  double delta) noexcept;

// Fine wheels turn less than a notch at a time: the parts add up to whole notches.
class VELTRA_EXPORT WheelNotches {
public:
    // Returns the whole notches that are complete, at most 1000 either way. What is left over of
    // one direction does not count in the other. NaN counts as 0.
    int add(double part) noexcept;
    void reset() noexcept { m_rest = 0.0; }

private:
    double m_rest = 0.0;
};

}  // namespace veltra
