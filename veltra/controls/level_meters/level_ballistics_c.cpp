// SPDX-License-Identifier: MIT
#include "veltra/controls/level_meters/level_ballistics_c.h"

#include "veltra/controls/level_meters/level_ballistics.h"

#include <new>
#include <optional>

namespace veltra {

struct VLLevelBallistics {
    LevelBallistics meter;
};

namespace {

Moment momentAt(int64_t nanoseconds) noexcept {
    return Moment(Nanoseconds(nanoseconds));
}

int64_t countOf(std::optional<Nanoseconds> time) noexcept {
    return time.has_value() ? time->count() : -1;
}

}  // namespace

VLLevelBallistics* VLLevelBallisticsCreate() noexcept {
    return new (std::nothrow) VLLevelBallistics;
}

void VLLevelBallisticsDestroy(VLLevelBallistics* meter) noexcept {
    delete meter;
}

float VLLevelBallisticsFallBackStep(const VLLevelBallistics* meter) noexcept {
    return meter != nullptr ? meter->meter.fallBackStep() : 0.0F;
}

void VLLevelBallisticsSetFallBackStep(VLLevelBallistics* meter, float step) noexcept {
    if (meter != nullptr) meter->meter.setFallBackStep(step);
}

double VLLevelBallisticsFallBackStepTime(const VLLevelBallistics* meter) noexcept {
    return meter != nullptr ? meter->meter.fallBackStepTime() : 0.0;
}

void VLLevelBallisticsSetFallBackStepTime(VLLevelBallistics* meter, double seconds) noexcept {
    if (meter != nullptr) meter->meter.setFallBackStepTime(seconds);
}

double VLLevelBallisticsMaxLevelHoldTime(const VLLevelBallistics* meter) noexcept {
    return meter != nullptr ? meter->meter.maxLevelHoldTime() : 0.0;
}

void VLLevelBallisticsSetMaxLevelHoldTime(VLLevelBallistics* meter, double seconds) noexcept {
    if (meter != nullptr) meter->meter.setMaxLevelHoldTime(seconds);
}

bool VLLevelBallisticsSetLevel(VLLevelBallistics* meter, float level, bool forceDisplay,
                               int64_t now) noexcept {
    return meter != nullptr && meter->meter.setLevel(level, forceDisplay, momentAt(now));
}

bool VLLevelBallisticsTick(VLLevelBallistics* meter, int64_t now) noexcept {
    return meter != nullptr && meter->meter.tick(momentAt(now));
}

float VLLevelBallisticsLevel(const VLLevelBallistics* meter) noexcept {
    return meter != nullptr ? meter->meter.level() : 0.0F;
}

float VLLevelBallisticsDisplayLevel(const VLLevelBallistics* meter) noexcept {
    return meter != nullptr ? meter->meter.displayLevel() : 0.0F;
}

float VLLevelBallisticsMaxDisplayLevel(const VLLevelBallistics* meter) noexcept {
    return meter != nullptr ? meter->meter.maxDisplayLevel() : 0.0F;
}

void VLLevelBallisticsDropMaximum(VLLevelBallistics* meter) noexcept {
    if (meter != nullptr) meter->meter.dropMaximum();
}

bool VLLevelBallisticsPeak(const VLLevelBallistics* meter) noexcept {
    return meter != nullptr && meter->meter.peak();
}

void VLLevelBallisticsSetPeak(VLLevelBallistics* meter, bool isOn) noexcept {
    if (meter != nullptr) meter->meter.setPeak(isOn);
}

int64_t VLLevelBallisticsTimeToTick(const VLLevelBallistics* meter, int64_t now) noexcept {
    return meter != nullptr ? countOf(meter->meter.timeToTick(momentAt(now))) : -1;
}

int64_t VLLevelBallisticsTimeToHoldEnd(const VLLevelBallistics* meter, int64_t now) noexcept {
    return meter != nullptr ? countOf(meter->meter.timeToHoldEnd(momentAt(now))) : -1;
}

}  // namespace veltra
