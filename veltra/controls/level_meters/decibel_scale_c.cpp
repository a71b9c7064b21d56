// SPDX-License-Identifier: MIT
#include "veltra/controls/level_meters/decibel_scale_c.h"

#include "veltra/controls/level_meters/decibel_scale.h"

namespace veltra {

float VLMeterPositionForDecibels(double decibels) noexcept {
    return meterPositionForDecibels(decibels);
}

double VLDecibelsForMeterPosition(float position) noexcept {
    return decibelsForMeterPosition(position);
}

float VLMeterPositionForAmplitude(float amplitude) noexcept {
    return meterPositionForAmplitude(amplitude);
}

double VLDecibelsForAmplitude(float amplitude) noexcept {
    return decibelsForAmplitude(amplitude);
}

}  // namespace veltra
