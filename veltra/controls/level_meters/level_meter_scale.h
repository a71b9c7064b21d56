// SPDX-License-Identifier: MIT
// Where the scale beside a level meter has its ticks and labels. Each tick lies in the gap between
// two LEDs, and where room is short the labels that matter most stay. LevelMeterScaleView draws it.
//
// Thread: any. Realtime-safe: yes, but label().
#pragma once

#include "veltra/controls/level_meters/level_meter_look.h"
#include "veltra/export.h"

#include <array>
#include <cstdint>
#include <string>

namespace veltra {

// How many of `rows` LEDs lie below a number of decibels: at most half an LED away from where it
// belongs. 0 for NaN, and for `rows` below 1.
VELTRA_EXPORT std::int32_t levelMeterRowsBelow(double decibels, std::int32_t rows,
                                               LevelMeterLevels levels) noexcept;

// One tick of the scale.
struct LevelMeterTick {
    double decibels = 0.0;  // relative to full scale
    // From the place of full scale downwards (to the left, of a lying meter), in points. With LEDs
    // it is the upper edge of the LED below; the tick fills the gap above that edge.
    float edge = 0.0F;
    bool isMajor = false;     // full scale, and where a zone begins
    bool isLabelled = false;  // 0 always is
};

class VELTRA_EXPORT LevelMeterScale {
public:
    static constexpr float kUprightDistance = 15.0F;  // points from label to label
    static constexpr float kLyingDistance = 26.0F;    // the same, of a lying meter

    // A bar `length` points long with `rows` LEDs; without LEDs (0) ticks lie on whole device
    // pixels, of which `scale` make a point. Labels stand at least `distance` points apart.
    LevelMeterScale(float length, std::int32_t rows, float scale, LevelMeterLevels levels,
                    float distance = kUprightDistance) noexcept;

    // From 0 to -60 dB.
    const std::array<LevelMeterTick, 10>& ticks() const noexcept { return m_ticks; }
    // As LevelMeterTick::edge, of any number of decibels.
    float edgeOf(double decibels) const noexcept;

    // Such as "0" and "−12", with a true minus sign.
    static std::string label(double decibels);

private:
    float m_length;
    std::int32_t m_rows;
    float m_scale;
    LevelMeterLevels m_levels;
    std::array<LevelMeterTick, 10> m_ticks;
};

}  // namespace veltra
