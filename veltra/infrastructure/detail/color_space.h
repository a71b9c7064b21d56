// SPDX-License-Identifier: MIT
// What stands behind a VLColorSpace.
#pragma once

#include "veltra/infrastructure/color_management.h"
#include "veltra/platform/color_transform.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace veltra {

struct VLColorSpace {
    enum class Kind : std::uint8_t { DeviceGray, CalibratedGray, CalibratedRgb, Profile };

    Kind kind;
    // Null: by formula, which every kind but Profile has.
    const ColorTransform* transform = nullptr;
};

inline constexpr VLColorSpace kDeviceGray{VLColorSpace::Kind::DeviceGray};
inline constexpr VLColorSpace kCalibratedGray{VLColorSpace::Kind::CalibratedGray};
inline constexpr VLColorSpace kCalibratedRgbByFormula{VLColorSpace::Kind::CalibratedRgb};

}  // namespace veltra
