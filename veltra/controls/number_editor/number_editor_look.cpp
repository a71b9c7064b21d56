// SPDX-License-Identifier: MIT
#include "veltra/controls/number_editor/number_editor_look.h"

#include "veltra/ui/theme.h"

namespace veltra {

namespace {
constexpr Color kPlainEights{0.8F, 0.8F, 0.8F, 0.5F};
constexpr float kHover = 0.08F;
constexpr float kFaded = 0.2F;
constexpr float kGhost = 0.08F;
}  // namespace

NumberEditorColors numberEditorColors(NumberEditorLook look, Appearance appearance) noexcept {
    if (look == NumberEditorLook::Plain) {
        return {.text = kBlack,
                .editBackground = systemColor(SystemColor::SelectedTextBackground, appearance),
                .editText = kBlack,
                .shadowEight = kPlainEights,
                .leadingZeros = std::nullopt,
                .editLeadingZeros = std::nullopt,
                .separator = kBlack,
                .hover = kClear};
    }
    const Theme& colors = theme(appearance);
    const bool isGlass = look == NumberEditorLook::Glass;
    return {
        .text = isGlass ? colors.glassText : colors.text,
        .editBackground = colors.accent,
        .editText = colors.onAccent,
        .shadowEight = isGlass ? colors.glassGhost : colors.field.mixedWith(colors.text, kGhost),
        .leadingZeros = isGlass ? colors.glassZero : colors.caption,
        .editLeadingZeros = colors.onAccent.mixedWith(colors.accent, kFaded),
        .separator = isGlass ? colors.glassZero : colors.caption,
        .hover = (isGlass ? kWhite : colors.text).withAlpha(kHover)};
}

}  // namespace veltra
