// SPDX-License-Identifier: MIT
// Which look an image identifier stands for.
//
// Thread: main, for everything in here. Realtime-safe: no.
#pragma once

#include "veltra/controls/level_meters/level_meter_look.h"

#include <cstdint>
#include <memory>

namespace veltra {

// The built-in ones, drawn by code.
inline constexpr std::int32_t kLevelMeterImageLED = 0;   // LEDs
inline constexpr std::int32_t kLevelMeterImageBar = 1;   // one continuous bar
inline constexpr std::int32_t kLevelMeterImageSlim = 2;  // the same, 6 points thick

// Gives the look to an identifier, a built-in one included; null gives it back what it had. Meters
// take the look over the next time they are drawn.
VELTRA_EXPORT void registerLevelMeterLook(std::int32_t imageID,
                                          std::shared_ptr<const LevelMeterLook> look);

// Never null: an identifier that nobody has registered stands for kLevelMeterImageLED.
VELTRA_EXPORT std::shared_ptr<const LevelMeterLook> levelMeterLook(std::int32_t imageID);

}  // namespace veltra
