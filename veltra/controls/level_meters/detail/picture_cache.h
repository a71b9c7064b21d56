// SPDX-License-Identifier: MIT
// The pictures of meters that are in use or were lately: meters that look alike share one.
#pragma once

#include "veltra/controls/level_meters/level_meter_look.h"

#include <cstdint>
#include <memory>

namespace veltra::detail {

enum class MeterPart : std::uint8_t { Bar, Light };

// Drawn by the look when it is not at hand. What the meters keep of it stays; of the rest the 32
// used last are kept.
LevelMeterPicture meterPicture(const std::shared_ptr<const LevelMeterLook>& look, MeterPart part,
                               const LevelMeterPictureRequest& request);

}  // namespace veltra::detail
