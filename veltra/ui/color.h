// SPDX-License-Identifier: MIT
// A colour in the sRGB space with straight alpha; each component from 0 to 1.
//
// Thread: any. Realtime-safe: yes.
#pragma once

#include "veltra/export.h"

#include <cstdint>

namespace veltra {

struct Color {
    float red = 0.0F;    // not multiplied by alpha, as the next two
    float green = 0.0F;  // 0 is none, 1 the most there is
    float blue = 0.0F;   // in the encoding of sRGB, not linear in light
    float alpha = 1.0F;  // 0 is clear, 1 opaque

    // 0xRRGGBB, opaque.
    static constexpr Color fromRgb(std::uint32_t rgb) noexcept {
        return {static_cast<float>(rgb >> 16U & 0xFFU) / 255.0F,
                static_cast<float>(rgb >> 8U & 0xFFU) / 255.0F,
                static_cast<float>(rgb & 0xFFU) / 255.0F, 1.0F};
    }

    // The same colour with another alpha, whatever its own is.
    constexpr Color withAlpha(float newAlpha) const noexcept {
        return {red, green, blue, newAlpha};
    }

    // `part` (0 to 1) of `other` and the rest of this one, component by component.
    constexpr Color mixedWith(Color other, float part) const noexcept {
        const auto mix = [part](float mine, float theirs) { return mine + (theirs - mine) * part; };
        return {mix(red, other.red), mix(green, other.green), mix(blue, other.blue),
                mix(alpha, other.alpha)};
    }

    // Whether all four components are equal. Clear colours may differ.
    friend constexpr bool operator==(Color left, Color right) noexcept = default;
};

// Opaque black and white, and a black that is not seen.
inline constexpr Color kBlack{0.0F, 0.0F, 0.0F, 1.0F};
inline constexpr Color kWhite{1.0F, 1.0F, 1.0F, 1.0F};
inline constexpr Color kClear{0.0F, 0.0F, 0.0F, 0.0F};

}  // namespace veltra
