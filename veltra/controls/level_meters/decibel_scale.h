// SPDX-License-Identifier: MIT
// Where a meter shows how many decibels. Meters take linear positions from 0 to 1; a host that
// wants the quiet end to be seen converts its levels with this scale first. For C:
// decibel_scale_c.h.
//
//   cell.setLevelScale(LevelMeterLevels::Decibels);  // once, for screen readers
//   cell.setLevel(meterPositionForAmplitude(peakOfTheBlock));
//
// The law is the one of IEC 60268-18 for digital peak meters: straight pieces that get steeper
// towards full scale.
//
//   dB        -70    -60    -50    -40    -30    -20      0
//   position    0  0.025  0.075   0.15    0.3    0.5      1
//
// Thread: any. Realtime-safe: yes.
#pragma once

#include "veltra/export.h"

namespace veltra {

// 0 below -70 dB and for NaN; above 0 dB the last piece goes on, so that what clips in the
// signal also clips in the meter.
VELTRA_EXPORT float meterPositionForDecibels(double decibels) noexcept;

// The reverse; minus infinity at 0 and below and for NaN.
VELTRA_EXPORT double decibelsForMeterPosition(float position) noexcept;

// `amplitude` is linear, 1 at full scale; its sign does not count.
VELTRA_EXPORT float meterPositionForAmplitude(float amplitude) noexcept;

// 20 log10 of the absolute value; minus infinity for 0 and for NaN.
VELTRA_EXPORT double decibelsForAmplitude(float amplitude) noexcept;

}  // namespace veltra
