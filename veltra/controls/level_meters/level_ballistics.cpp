// SPDX-License-Identifier: MIT
#include "veltra/controls/level_meters/level_ballistics.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace veltra {

namespace {

constexpr double kInsignificant = 0.01;
constexpr double kTimerSlack = 1e-6;  // of a step: what rounding to nanoseconds may take away
constexpr double kMostSteps = 1e12;   // of one tick, and still a number however short a step is

double sanitized(double seconds) noexcept {
    return seconds > 0.0 ? seconds : 0.0;
}

// Whatever is below 0 is shown as 0: no need for numbers that a float cannot hold.
float toLevel(double level) noexcept {
    return static_cast<float>(std::max(level, -1.0));
}

}  // namespace

void LevelBallistics::setFallBackStep(float step) noexcept {
    m_fallBackStep = step > 0.0F && std::isfinite(step) ? step : 0.0F;
}

void LevelBallistics::setFallBackStepTime(double seconds) noexcept {
    m_fallBackStepTime = sanitized(seconds);
}

void LevelBallistics::setMaxLevelHoldTime(double seconds) noexcept {
    m_maxLevelHoldTime = sanitized(seconds);
}

double LevelBallistics::secondsSinceLastCall(Moment now) const noexcept {
    return std::max(now - m_lastCallDate.value_or(now), Nanoseconds()).seconds();
}

float LevelBallistics::restingLevel() const noexcept {
    return std::clamp(m_level, 0.0F, highestDisplay());
}

bool LevelBallistics::setLevel(float level, bool forceDisplayIfNeeded, Moment now) noexcept {
    if (!(level > -std::numeric_limits<float>::infinity())) level = 0.0F;
    const double shown = m_displayLevel;
    const bool isSignificant = std::fabs(shown - static_cast<double>(level)) > kInsignificant;
    m_level = level;

    const double elapsed = secondsSinceLastCall(now);
    m_holdAccumulateTime += elapsed;
    m_lastCallDate = std::max(now, m_lastCallDate.value_or(now));

    float decayed = m_displayLevel;
    if (m_fallBackStep > 0.0F && m_fallBackStepTime > 0.0) {
        decayed =
            toLevel(shown - elapsed * static_cast<double>(m_fallBackStep) / m_fallBackStepTime);
    } else if (m_fallBackStep > 0.0F) {
        decayed = 0.0F;
    }
    float next = std::max(level, decayed);
    bool needsDisplay = isSignificant || forceDisplayIfNeeded;
    if (next > 1.0F) {
        needsDisplay |= !m_peak;  // also when the light was put out while the level stayed
        m_peak = true;
        next = std::min(next, highestDisplay());
    } else if (next < 0.0F) {
        next = 0.0F;
    }
    m_displayLevel = next;

    if (next > m_maxDisplayLevel) {
        m_maxDisplayLevel = next;
        m_holdAccumulateTime = 0.0;
        needsDisplay = true;
    } else if (m_holdAccumulateTime > m_maxLevelHoldTime) {
        needsDisplay |= m_maxDisplayLevel > 0.0F;
        dropMaximum();
    }
    return needsDisplay;
}

bool LevelBallistics::tick(Moment now) noexcept {
    if (!(m_fallBackStep > 0.0F) || !std::isfinite(m_fallBackStepTime)) return false;
    if (!(m_fallBackStepTime > 0.0)) {
        m_displayLevel = restingLevel();
        return false;
    }
    double steps = 1.0;
    if (m_lastCallDate && now > *m_lastCallDate) {
        const double elapsed = secondsSinceLastCall(now);
        steps = std::clamp(std::floor(elapsed / m_fallBackStepTime + kTimerSlack), 1.0, kMostSteps);
        const double used = std::min(steps * m_fallBackStepTime, elapsed);
        m_holdAccumulateTime += used;
        *m_lastCallDate = std::min(now, *m_lastCallDate + seconds(used));
    }
    const double fallen =
        static_cast<double>(m_displayLevel) - steps * static_cast<double>(m_fallBackStep);
    m_displayLevel = std::max(toLevel(fallen), restingLevel());
    return m_displayLevel > restingLevel();
}

void LevelBallistics::dropMaximum() noexcept {
    m_maxDisplayLevel = 0.0F;
    m_holdAccumulateTime = 0.0;
}

std::optional<Nanoseconds> LevelBallistics::timeToTick(Moment now) const noexcept {
    if (!(m_fallBackStep > 0.0F && m_fallBackStepTime > 0.0)) return std::nullopt;
    if (!std::isfinite(m_fallBackStepTime) || !(m_displayLevel > restingLevel()))
        return std::nullopt;
    return seconds(std::max(m_fallBackStepTime - secondsSinceLastCall(now), 0.0));
}

std::optional<Nanoseconds> LevelBallistics::timeToHoldEnd(Moment now) const noexcept {
    if (!(m_maxDisplayLevel > 0.0F) || !std::isfinite(m_maxLevelHoldTime)) return std::nullopt;
    return seconds(
        std::max(m_maxLevelHoldTime - m_holdAccumulateTime - secondsSinceLastCall(now), 0.0));
}

}  // namespace veltra
