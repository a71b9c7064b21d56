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

// What a number editor looks like where no colour is set.
enum class NumberEditorLook : std::uint8_t {
    Plain,  // black digits, for hosts that set all colours themselves
    Glass,  // a read-out: on the dark ground of the theme's glass
    Field,  // a setting: on the theme's field
};

// What each part of a number editor is drawn in.
struct NumberEditorColors {
    Color text;                             // the digits
    Color editBackground;                   // the ground of the group that is being edited
    Color editText;                         // its digits
    Color shadowEight;                      // the eights behind the digits
    std::optional<Color> leadingZeros;      // nothing: as the text
    std::optional<Color> editLeadingZeros;  // the same while editing
    Color separator;                        // what stands between groups
    Color hover;                            // over the ground, under the digits
};

// The colours of a look in a light or a dark window.
VELTRA_EXPORT NumberEditorColors numberEditorColors(NumberEditorLook look,
                                                    Appearance appearance) noexcept;

}  // namespace veltra
