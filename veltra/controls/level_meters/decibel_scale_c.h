// SPDX-License-Identifier: MIT
// For C and every language that can call it: where a meter shows how many decibels. The scale
// stands in decibel_scale.h; each function does what the one of that name there does.
//
// Thread: any. Realtime-safe: yes.
#pragma once

#include "veltra/c_linkage.h"

VELTRA_C_BEGIN

// 0 below -70 dB and for NaN, 1 at 0 dB, more above.
VELTRA_EXPORT float VLMeterPositionForDecibels(double decibels) VELTRA_NOEXCEPT;

// The reverse; minus infinity at 0 and below and for NaN.
VELTRA_EXPORT double VLDecibelsForMeterPosition(float position) VELTRA_NOEXCEPT;

// `amplitude` is linear, 1 at full scale; its sign does not count.
VELTRA_EXPORT float VLMeterPositionForAmplitude(float amplitude) VELTRA_NOEXCEPT;

// Minus infinity for 0 and for NaN.
VELTRA_EXPORT double VLDecibelsForAmplitude(float amplitude) VELTRA_NOEXCEPT;

VELTRA_C_END
