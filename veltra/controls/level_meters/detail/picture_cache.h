// SPDX-License-Identifier: MIT
// The pictures of meters that are in use or were lately: meters that look alike share one.
#pragma once

#include "veltra/controls/level_meters/level_meter_look.h"

#include <cstdint>
#include <functional>
#include <memory>

namespace veltra::detail {

enum class MeterPart : std::uint8_t { Bar, Light, Column };

// What a picture depends on. Of a column, the whole meter unlit, `light` is the other look that it
// is put together from.
struct MeterPictureKey {
    std::shared_ptr<const LevelMeterLook> look;
    std::shared_ptr<const LevelMeterLook> light;
    MeterPart part;
    LevelMeterPictureRequest request;

    friend bool operator==(const MeterPictureKey&, const MeterPictureKey&) = default;
};

// Made by `make` when it is not at hand. What the meters keep of it stays; of the rest the 32 used
// last are kept.
LevelMeterPicture meterPicture(const MeterPictureKey& key,
                               const std::function<LevelMeterPicture()>& make);

}  // namespace veltra::detail
