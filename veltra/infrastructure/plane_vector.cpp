// SPDX-License-Identifier: MIT
#include "veltra/infrastructure/plane_vector.h"

#include <cmath>
#include <numbers>

namespace veltra {

namespace {

// No square of a float overflows or vanishes in a double.
double length(QkVector vector) noexcept {
    const double x = vector.x;
    const double y = vector.y;
    return std::sqrt(x * x + y * y);
}

}  // namespace

QkVector QkMakeVectorFromPoints(QkVector from, QkVector to) noexcept {
    return {to.x - from.x, to.y - from.y};
}

QkVector vectorSum(QkVector left, QkVector right) noexcept {
    return {left.x + right.x, left.y + right.y};
}

QkVector inverseVector(QkVector vector) noexcept {
    return {-vector.x, -vector.y};
}

QkVector scalarMultiplication(QkVector vector, float factor) noexcept {
    return {vector.x * factor, vector.y * factor};
}

float vectorScalarProduct(QkVector left, QkVector right) noexcept {
    return static_cast<float>(static_cast<double>(left.x) * right.x +
                              static_cast<double>(left.y) * right.y);
}

float vectorLength(QkVector vector) noexcept {
    return static_cast<float>(length(vector));
}

float vectorAngle(QkVector vector) noexcept {
    if (vector.x == 0.0F && vector.y == 0.0F) return 0.0F;  // also with negative zeros
    return static_cast<float>(
        std::atan2(static_cast<double>(vector.y), static_cast<double>(vector.x)));
}

float radiantsToDegree(float radians) noexcept {
    return static_cast<float>(radians * (180.0 / std::numbers::pi));
}

QkVector unitVector(QkVector vector) noexcept {
    return vectorWithAdjustedLength(vector, 1.0F);
}

QkVector vectorWithAdjustedLength(QkVector vector, float wanted) noexcept {
    const double present = length(vector);
    if (present == 0.0) return vector;
    const double factor = wanted / present;
    return {static_cast<float>(vector.x * factor), static_cast<float>(vector.y * factor)};
}

}  // namespace veltra
