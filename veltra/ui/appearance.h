// SPDX-License-Identifier: MIT
// Light or dark, and the colours that go with it: what a control takes where its client set none.
#pragma once

#include "veltra/export.h"
#include "veltra/ui/color.h"

#include <cstdint>

namespace veltra {

// Dark text on a light ground, or light text on a dark one.
enum class Appearance : std::uint8_t { Light, Dark };

// What a colour is for.
enum class SystemColor : std::uint8_t {
    WindowBackground,
    ControlBackground,  // the face of a button, the inside of a group
    Separator,          // thin lines between things
    Grid,               // thin lines inside a control
    Label,
    SecondaryLabel,
    DisabledLabel,
    SelectedTextBackground,
    SelectedText,
    Accent,  // what is switched on, selected or focused
    Alert,   // what has gone wrong
};

// Thread: any. Realtime-safe: yes.
VELTRA_EXPORT Color systemColor(SystemColor color, Appearance appearance) noexcept;

}  // namespace veltra
