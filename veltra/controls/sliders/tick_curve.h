// SPDX-License-Identifier: MIT
// Tick marks on a curve: where a knob that stops only at marks finds many of them close together
// at one end of its range, and few at the other. With five marks from 0 to 100:
//
//   Even    0    25     50     75     100
//   Low     0    7.77   19.38  44.65  100
//   High    0    55.35  80.63  92.23  100
//
// Thread: any. Realtime-safe: yes.
#pragma once

#include "veltra/export.h"

#include <cstdint>

namespace veltra {

enum class TickCurve : std::uint8_t {
    Even,  // equal distances
    Low,   // close together at the minimum
    High,  // close together at the maximum: Low mirrored
};

// How far along the range, from 0 to 1, mark `index` of `count` lies: 0.7 t^4 + 0.3 t for Low, with
// t from 0 to 1 over the marks. An index outside of the marks counts as the one at that end; a
// single mark lies at 0.
VELTRA_EXPORT double tickCurvePart(TickCurve curve, std::int32_t index,
                                   std::int32_t count) noexcept;

// The same place as a value. The last mark is exactly `maximum`.
VELTRA_EXPORT double tickCurveValue(TickCurve curve, std::int32_t index, std::int32_t count,
                                    double minimum, double maximum) noexcept;

// A value that is linear in the marks, counted from the maximum down when it is inverted; the
// minimum when there are fewer than two marks.
VELTRA_EXPORT double linearValueOfTick(std::int32_t index, std::int32_t count, double minimum,
                                       double maximum, bool isInverted = false) noexcept;
// The mark that a linear value (not inverted) selects: the nearest one, the upper one of two.
// Values beyond the limits count as the limit, NaN as the minimum. Mark 0 when there are fewer than
// two marks or the range is empty or beyond all numbers.
VELTRA_EXPORT std::int32_t tickOfLinearValue(double value, std::int32_t count, double minimum,
                                             double maximum) noexcept;

// The value at the same distance from the other end of the range.
constexpr double mirroredValue(double value, double minimum, double maximum) noexcept {
    return minimum + (maximum - value);
}

}  // namespace veltra
