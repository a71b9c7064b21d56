// SPDX-License-Identifier: MIT
// The pictures of meters that are in use or were lately: meters that look alike share one.
#pragma once

#include "veltra/controls/level_meters/level_meter_look.h"

#include <cstdint>
#include <functional>
#include <memory>

namespace veltra::detail {

enum class MeterPart : std::uint8_t { Bar, Light, Column };

// What a picture depends on. A column, the whole meter with the clip light unlit, is put together
// from two looks and begins with the ground.
struct MeterPictureKey {
    std::shared_ptr<const LevelMeterLook> look;
    MeterPart part;
    LevelMeterPictureRequest request;
    std::shared_ptr<const LevelMeterLook> light{};  // of a column
    std::int32_t rest = 0;                          // of a column: how much ground, device pixels

    friend bool operator==(const MeterPictureKey&, const MeterPictureKey&) = default;
};

// Made by `make` when it is not at hand. What the meters keep of it stays; of the rest the 32 used
// last are kept.
LevelMeterPicture meterPicture(const MeterPictureKey& key,
                               const std::function<LevelMeterPicture()>& make);

}  // namespace veltra::detail
