// SPDX-License-Identifier: MIT
// Arithmetic on vectors and points of the plane, for drawing code: knobs, pans, curves.
//
// Everything is computed in double precision and rounded once. NaN and infinity spread by the usual
// rules.
// Thread: any. Realtime-safe: yes.
#pragma once

#include "veltra/c_linkage.h"

VELTRA_C_BEGIN

// A vector, or a point: the vector from the origin to it.
typedef struct QkVector {
    float x;  // to the right, in the unit of whoever draws
    float y;  // up or down, as the drawing has it
} QkVector;

// The vector that leads from `from` to `to`.
VELTRA_EXPORT QkVector QkMakeVectorFromPoints(QkVector from, QkVector to) VELTRA_NOEXCEPT;

// The vectors one after the other; of a point and a vector, the point moved by it.
VELTRA_EXPORT QkVector vectorSum(QkVector left, QkVector right) VELTRA_NOEXCEPT;

// The vector that leads back.
VELTRA_EXPORT QkVector inverseVector(QkVector vector) VELTRA_NOEXCEPT;

// The vector `factor` times as long; a negative factor turns it round.
VELTRA_EXPORT QkVector scalarMultiplication(QkVector vector, float factor) VELTRA_NOEXCEPT;

// The sum of the products of the coordinates: 0 for vectors at right angles.
VELTRA_EXPORT float vectorScalarProduct(QkVector left, QkVector right) VELTRA_NOEXCEPT;

// The distance from the origin, never negative.
VELTRA_EXPORT float vectorLength(QkVector vector) VELTRA_NOEXCEPT;

// The angle from the x axis towards the y axis, in radians from -pi to pi; 0 for the null vector.
VELTRA_EXPORT float vectorAngle(QkVector vector) VELTRA_NOEXCEPT;
VELTRA_EXPORT float radiantsToDegree(float radians) VELTRA_NOEXCEPT;

// The vector of length 1, or of `length`, in the same direction; in the opposite one for a negative
// length. The null vector has no direction and stays what it is.
VELTRA_EXPORT QkVector unitVector(QkVector vector) VELTRA_NOEXCEPT;
VELTRA_EXPORT QkVector vectorWithAdjustedLength(QkVector vector, float length) VELTRA_NOEXCEPT;

VELTRA_C_END
