// SPDX-License-Identifier: MIT
#include "veltra/ui/appearance.h"

#include "veltra/base/testing/prelude.h"
#include "veltra/ui/testing/sight.h"

namespace veltra::testing {
namespace {

TEST(Appearance, ItsColorsCanBeReadOnEachOther) {
    using enum SystemColor;
    const std::tuple<SystemColor, SystemColor, double> least[] = {
        {Label, WindowBackground, 7.0},          {Label, ControlBackground, 7.0},
        {SecondaryLabel, WindowBackground, 4.5}, {SecondaryLabel, ControlBackground, 4.5},
        {DisabledLabel, WindowBackground, 2.0},  {SelectedText, SelectedTextBackground, 4.5},
        {Accent, WindowBackground, 3.0},         {Alert, WindowBackground, 4.5},
        {Grid, ControlBackground, 1.2},          {Separator, WindowBackground, 1.1}};
    for (const Appearance appearance : {Appearance::Light, Appearance::Dark}) {
        const auto rgb = [&](SystemColor color) { return rgbOf(systemColor(color, appearance)); };
        for (const auto& [color, ground, ratio] : least)
            EXPECT_GE(contrast(rgb(color), rgb(ground)), ratio)
                << int(appearance) << ' ' << int(color) << " on " << int(ground);
        EXPECT_LT(contrast(rgb(DisabledLabel), rgb(WindowBackground)),
                  contrast(rgb(SecondaryLabel), rgb(WindowBackground)));
        const bool isDark = appearance == Appearance::Dark;
        EXPECT_GT(contrast(rgb(WindowBackground), isDark ? 0xFFFFFFU : 0U), 12.0);
    }
}

}  // namespace
}  // namespace veltra::testing
