// SPDX-License-Identifier: MIT
// The colours of a number editor that nobody has set.
//
// Thread: any. Realtime-safe: yes.
#pragma once

#include "veltra/export.h"
#include "veltra/ui/appearance.h"
#include "veltra/ui/color.h"

#include <cstdint>
#include <optional>

namespace veltra {

enum class NumberEditorLook : std::uint8_t {
    Plain,  // black digits, for hosts that set all colours themselves
    Glass,  // a read-out: on the dark ground of the theme's glass
    Field,  // a setting: on the theme's field
};

struct NumberEditorColors {
    Color text;
    Color editBackground;
    Color editText;
    Color shadowEight;
    std::optional<Color> leadingZeros;      // nothing: as the text
    std::optional<Color> editLeadingZeros;  // the same while editing
    Color separator;
    Color hover;  // over the ground, under the digits
};

VELTRA_EXPORT NumberEditorColors numberEditorColors(NumberEditorLook look,
                                                    Appearance appearance) noexcept;

}  // namespace veltra
