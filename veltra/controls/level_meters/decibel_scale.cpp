// SPDX-License-Identifier: MIT
#include "veltra/controls/level_meters/decibel_scale.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <limits>

namespace veltra {

namespace {

struct Knot {
    double decibels;
    double position;
};

constexpr std::array<Knot, 7> kKnots{{
    {-70.0, 0.000},
    {-60.0, 0.025},
    {-50.0, 0.075},
    {-40.0, 0.150},
    {-30.0, 0.300},
    {-20.0, 0.500},
    {0.0, 1.000},
}};

// The piece on which `value` lies, by its upper end; the last one goes on for ever.
std::size_t pieceOf(double value, double Knot::*axis) noexcept {
    std::size_t upper = 1;
    while (upper + 1 < kKnots.size() && value > kKnots[upper].*axis)
        ++upper;
    return upper;
}

double along(double value, double Knot::*from, double Knot::*to) noexcept {
    const std::size_t upper = pieceOf(value, from);
    const Knot& low = kKnots[upper - 1];
    const Knot& high = kKnots[upper];
    return low.*to + (value - low.*from) * (high.*to - low.*to) / (high.*from - low.*from);
}

constexpr double kSilence = -std::numeric_limits<double>::infinity();

}  // namespace

float meterPositionForDecibels(double decibels) noexcept {
    if (!(decibels > kKnots.front().decibels)) return 0.0F;
    return static_cast<float>(along(decibels, &Knot::decibels, &Knot::position));
}

double decibelsForMeterPosition(float position) noexcept {
    if (!(position > 0.0F)) return kSilence;
    return along(static_cast<double>(position), &Knot::position, &Knot::decibels);
}

float meterPositionForAmplitude(float amplitude) noexcept {
    return meterPositionForDecibels(decibelsForAmplitude(amplitude));
}

double decibelsForAmplitude(float amplitude) noexcept {
    const double size = std::fabs(static_cast<double>(amplitude));
    return size > 0.0 ? 20.0 * std::log10(size) : kSilence;
}

}  // namespace veltra
