// SPDX-License-Identifier: MIT
#include "veltra/ui/theme.h"

#include <optional>

namespace veltra {

namespace {

consteval Color rgb(std::uint32_t value) noexcept {
    return Color::fromRgb(value);
}

constexpr Theme kDark{
    .window = rgb(0x161514),
    .card = rgb(0x1F1E1C),
    .control = rgb(0x2D2B28),
    .controlHover = rgb(0x383632),
    .controlPressed = rgb(0x252321),
    .field = rgb(0x141312),
    .glass = rgb(0x0B0C0C),
    .line = rgb(0x312F2B),
    .edge = rgb(0x45423D),
    .strong = rgb(0x77726A),
    .text = rgb(0xF3F1EC),
    .label = rgb(0xB9B4AA),
    .caption = rgb(0x9B958B),
    .accent = rgb(0xA6A9FF),
    .onAccent = rgb(0x14142B),
    .accentSoft = rgb(0x2C2C46),
    .alert = rgb(0xFF8675),
    .alertSoft = rgb(0x3A211D),
    .wave = rgb(0x7C766C),
    .cap = rgb(0x4A4741),
    .capHover = rgb(0x5C5952),
    .capEdge = rgb(0x100F0E),
    .tip = rgb(0xF3F1EC),
    .tipText = rgb(0x1F1D1A),
    .floating = rgb(0x282623),
    .shadow = 0.2F,
    .glassText = rgb(0xF3F1EC),
    .glassCaption = rgb(0xADA89E),
    .glassZero = rgb(0x8A857C),
    .glassGhost = rgb(0x242627),
    .green = {rgb(0x1E9270), rgb(0x35C795), rgb(0x20332C)},
    .amber = {rgb(0xF2BC45), rgb(0xFFD978), rgb(0x372F1D)},
    .red = {rgb(0xF04A38), rgb(0xFF6450), rgb(0x3B2521)},
    .muted = {rgb(0x6F6B64), rgb(0x98938A), rgb(0x2B2A28)},
    .clip = rgb(0xFF4B36),
    .clipCore = rgb(0xFFE3DE),
    .clipOff = rgb(0x40261F),
    .clipText = rgb(0x200502),
    .mute = rgb(0xFF9A52),
    .solo = rgb(0xF2E05C),
    .arm = rgb(0xFF6450),
    .onSwitch = rgb(0x1B1206),
};

// Signals and what lies on glass are as in the dark.
consteval Theme makeLight() noexcept {
    Theme light = kDark;
    light.window = rgb(0xE9E7E2);
    light.card = rgb(0xF8F7F4);
    light.control = rgb(0xFFFFFF);
    light.controlHover = rgb(0xF2F0EC);
    light.controlPressed = rgb(0xE4E1DB);
    light.field = rgb(0xE9E6E0);
    light.glass = rgb(0x16191A);
    light.line = rgb(0xDAD6CE);
    light.edge = rgb(0xC6C1B7);
    light.strong = rgb(0x838076);
    light.text = rgb(0x1F1D1A);
    light.label = rgb(0x524E47);
    light.caption = rgb(0x66615A);
    light.accent = rgb(0x4B4CC6);
    light.onAccent = rgb(0xFFFFFF);
    light.accentSoft = rgb(0xE0E0F5);
    light.alert = rgb(0xB3261E);
    light.alertSoft = rgb(0xF8E1DC);
    light.wave = rgb(0x857F74);
    light.cap = rgb(0xFFFFFF);
    light.capHover = rgb(0xF2F0EC);
    light.capEdge = rgb(0x8A857B);
    light.tip = rgb(0x1F1D1A);
    light.tipText = rgb(0xF8F7F4);
    light.floating = rgb(0xFFFFFF);
    light.shadow = 0.08F;
    return light;
}
constexpr Theme kLight = makeLight();

}  // namespace

const Theme& theme(Appearance appearance) noexcept {
    return appearance == Appearance::Dark ? kDark : kLight;
}

Font themeFont(float size, FontWeight weight) {
    if (const auto inter = Font::fontWithName("Inter", size, weight, true)) return *inter;
    return {{}, size, weight, true};
}

}  // namespace veltra
