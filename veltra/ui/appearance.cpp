// SPDX-License-Identifier: MIT
#include "veltra/ui/appearance.h"

#include "veltra/ui/theme.h"

namespace veltra {

Color systemColor(SystemColor color, Appearance appearance) noexcept {
    const Theme& colors = theme(appearance);
    switch (color) {
        case SystemColor::WindowBackground:
            return colors.window;
        case SystemColor::ControlBackground:
            return colors.control;
        case SystemColor::Separator:
            return colors.line;
        case SystemColor::Grid:
            return colors.edge;
        case SystemColor::Label:
            return colors.text;
        case SystemColor::SecondaryLabel:
            return colors.label;
        case SystemColor::DisabledLabel:
            return colors.text.mixedWith(colors.card, 0.55F);
        case SystemColor::SelectedTextBackground:
        case SystemColor::Accent:
            return colors.accent;
        case SystemColor::SelectedText:
            return colors.onAccent;
        case SystemColor::Alert:
            return colors.alert;
    }
    return colors.text;
}

}  // namespace veltra
