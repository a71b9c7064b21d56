// SPDX-License-Identifier: MIT
#include "veltra/controls/number_editor/number_steps.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace veltra {

namespace {

constexpr float kGrid = 256.0F;
constexpr float kNoise = 0.5F / kGrid;

std::int32_t saturated(std::int64_t number) noexcept {
    using Limits = std::numeric_limits<std::int32_t>;
    return static_cast<std::int32_t>(
        std::clamp<std::int64_t>(number, Limits::min(), Limits::max()));
}

float added(float rest, float way) noexcept {
    return std::isfinite(way) ? rest + way : rest;
}

std::int64_t wholePoints(float points) noexcept {
    constexpr float kMost = 1e9F;
    return std::isnan(points) ? 0 : static_cast<std::int64_t>(std::clamp(points, -kMost, kMost));
}

}  // namespace

std::int32_t NumberSteps::stepUnder(ModifierFlags modifiers) const noexcept {
    if (modifiers.contains(kShiftKeyMask) && fine != 0) return fine;
    const bool isCoarse =
        modifiers.contains(kControlKeyMask) || modifiers.contains(kCommandKeyMask);
    return isCoarse ? coarse : 0;
}

std::int32_t NumberSteps::dragged(float previousY, float currentY, bool isFlipped,
                                  ModifierFlags modifiers) const noexcept {
    std::int64_t delta = wholePoints(std::ceil(currentY - previousY));
    if (isFlipped) delta = -delta;
    const std::int64_t step = stepUnder(modifiers);
    if (step != 0) return saturated(delta * step);
    const std::int64_t least = minimumDelta;
    if (delta > 0 && delta < least) delta = least;
    if (delta < 0 && delta > -least) delta = -least;
    return saturated(delta);
}

std::int32_t NumberSteps::wheeled(float deltaY, ModifierFlags modifiers) const noexcept {
    if (deltaY == 0.0F || std::isnan(deltaY)) return 0;
    const std::int32_t held = stepUnder(modifiers);
    const std::int64_t step = held != 0 ? held : minimumDelta;
    return saturated(deltaY > 0.0F ? step : -step);
}

std::int32_t NumberSteps::keyed(ModifierFlags modifiers) const noexcept {
    const std::int32_t held = stepUnder(modifiers);
    return held != 0 ? held : 1;
}

std::int32_t numberChangedBy(std::int32_t number, std::int64_t change) noexcept {
    constexpr std::int64_t kFar = std::numeric_limits<std::uint32_t>::max();
    return saturated(number + std::clamp(change, -kFar, kFar));
}

float WholeSteps::onGrid(float points) noexcept {
    return std::isfinite(points) ? std::round(points * kGrid) / kGrid : 0.0F;
}

float WholeSteps::roundedUp(float way) noexcept {
    const float all = added(m_rest, way);
    const float steps = std::ceil(all - kNoise);
    m_rest = all - steps;
    return steps;
}

float WholeSteps::truncated(float way) noexcept {
    const float all = added(m_rest, way);
    const float steps = std::trunc(all + std::copysign(kNoise, all));
    m_rest = all - steps;
    return steps;
}

}  // namespace veltra
