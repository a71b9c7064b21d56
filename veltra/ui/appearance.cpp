// SPDX-License-Identifier: MIT
#include "veltra/ui/appearance.h"

#include <array>

namespace veltra {

namespace {

struct Row {
    SystemColor color;
    std::uint32_t light;
    std::uint32_t dark;
};

// Text stands out from the backgrounds by at least 4.5 : 1, disabled text and lines excepted.
constexpr std::array<Row, 11> kColors{{
    {SystemColor::WindowBackground, 0xF2F3F5, 0x1B1D21},
    {SystemColor::ControlBackground, 0xFFFFFF, 0x282B31},
    {SystemColor::Separator, 0xD3D6DB, 0x3A3E46},
    {SystemColor::Grid, 0xC4C8CF, 0x4A4F59},
    {SystemColor::Label, 0x1C1F24, 0xECEEF1},
    {SystemColor::SecondaryLabel, 0x5B616C, 0xA4ABB7},
    {SystemColor::DisabledLabel, 0xA6ACB6, 0x666C77},
    {SystemColor::SelectedTextBackground, 0xB9D5FB, 0x2F538A},
    {SystemColor::SelectedText, 0x10233F, 0xF4F8FF},
    {SystemColor::Accent, 0x1F6FD6, 0x62A4F5},
    {SystemColor::Alert, 0xB3261E, 0xFF8A80},
}};

constexpr bool isInOrder() {
    for (std::size_t i = 0; i < kColors.size(); ++i) {
        if (static_cast<std::size_t>(kColors[i].color) != i) return false;
    }
    return true;
}
static_assert(isInOrder());

}  // namespace

Color systemColor(SystemColor color, Appearance appearance) noexcept {
    const Row& row = kColors[static_cast<std::size_t>(color)];
    return Color::fromRgb(appearance == Appearance::Dark ? row.dark : row.light);
}

}  // namespace veltra
