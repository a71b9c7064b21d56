// SPDX-License-Identifier: MIT
// How far colours, 0xRRGGBB, can be told apart.
#pragma once

#include "veltra/ui/color.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace veltra::testing {

// Red, green and blue light, from 0 to 1.
using Light = std::array<double, 3>;

inline Light lightOf(std::uint32_t rgb) {
    const auto linear = [rgb](unsigned shift) {
        const double part = static_cast<double>(rgb >> shift & 0xFFU) / 255.0;
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return {linear(16), linear(8), linear(0)};
}

inline std::uint32_t rgbOf(Color color) {
    const auto part = [](float value) {
        return static_cast<std::uint32_t>(std::lround(value * 255.0F));
    };
    return part(color.red) << 16U | part(color.green) << 8U | part(color.blue);
}

// Of text to its ground and the like: 1 to 21.
inline double contrast(std::uint32_t one, std::uint32_t other) {
    const auto luminance = [](std::uint32_t rgb) {
        const Light light = lightOf(rgb);
        return 0.2126 * light[0] + 0.7152 * light[1] + 0.0722 * light[2];
    };
    const double a = luminance(one), b = luminance(other);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

inline double contrast(Color one, Color other) {
    return contrast(rgbOf(one), rgbOf(other));
}

// Eyes with all three kinds of cones, and those that lack one.
enum class Sight : std::uint8_t { Ordinary, Protan, Deutan, Tritan };

inline constexpr Sight kSights[] = {Sight::Ordinary, Sight::Protan, Sight::Deutan, Sight::Tritan};

// A colour as those eyes see it, as CIELAB.
inline std::array<double, 3> seen(std::uint32_t rgb, Sight sight) {
    static constexpr double kSeen[4][3][3] = {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}},
                                              {{0.152286, 1.052583, -0.204868},
                                               {0.114503, 0.786281, 0.099216},
                                               {-0.003882, -0.048116, 1.051998}},
                                              {{0.367322, 0.860646, -0.227968},
                                               {0.280085, 0.672501, 0.047413},
                                               {-0.011820, 0.042940, 0.968881}},
                                              {{1.255528, -0.076749, -0.178779},
                                               {-0.078411, 0.930809, 0.147602},
                                               {0.004733, 0.691367, 0.303900}}};
    const Light light = lightOf(rgb);
    const auto part = [&](std::size_t i) {
        const auto& row = kSeen[static_cast<std::size_t>(sight)][i];
        return std::clamp(row[0] * light[0] + row[1] * light[1] + row[2] * light[2], 0.0, 1.0);
    };
    const double r = part(0), g = part(1), b = part(2);
    const auto root = [](double value) {
        return value > 0.008856 ? std::cbrt(value) : 7.787 * value + 16.0 / 116.0;
    };
    const double x = root((0.4124 * r + 0.3576 * g + 0.1805 * b) / 0.95047);
    const double y = root(0.2126 * r + 0.7152 * g + 0.0722 * b);
    const double z = root((0.0193 * r + 0.1192 * g + 0.9505 * b) / 1.08883);
    return {116.0 * y - 16.0, 500.0 * (x - y), 200.0 * (y - z)};
}

inline double distance(std::uint32_t one, std::uint32_t other, Sight sight) {
    const auto a = seen(one, sight), b = seen(other, sight);
    return std::hypot(a[0] - b[0], a[1] - b[1], a[2] - b[2]);
}

}  // namespace veltra::testing
