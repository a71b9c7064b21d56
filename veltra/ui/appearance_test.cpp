// SPDX-License-Identifier: MIT
#include "veltra/ui/appearance.h"

#include "veltra/base/testing/prelude.h"

namespace veltra::testing {
namespace {

float luminance(Color color) {
    const auto linear = [](float part) {
        return part <= 0.04045F ? part / 12.92F : std::pow((part + 0.055F) / 1.055F, 2.4F);
    };
    return 0.2126F * linear(color.red) + 0.7152F * linear(color.green) +
           0.0722F * linear(color.blue);
}

TEST(SystemColors, TextCanBeReadOnEveryGround) {
    using enum SystemColor;
    const std::pair<SystemColor, SystemColor> pairs[] = {
        {Label, WindowBackground},          {Label, ControlBackground},
        {SecondaryLabel, WindowBackground}, {SecondaryLabel, ControlBackground},
        {Alert, WindowBackground},          {SelectedText, SelectedTextBackground}};
    for (const Appearance appearance : {Appearance::Light, Appearance::Dark}) {
        for (const auto& [text, ground] : pairs) {
            const float one = luminance(systemColor(text, appearance)) + 0.05F;
            const float other = luminance(systemColor(ground, appearance)) + 0.05F;
            EXPECT_GE(std::max(one, other) / std::min(one, other), 4.5F)
                << static_cast<int>(text) << ' ' << static_cast<int>(ground);
        }
    }
}

}  // namespace
}  // namespace veltra::testing
