// SPDX-License-Identifier: MIT
#include "veltra/ui/theme.h"

#include "veltra/base/testing/prelude.h"

#include <gmock/gmock.h>

namespace veltra::testing {
namespace {

float luminance(Color color) {
    const auto linear = [](float part) {
        return part <= 0.04045F ? part / 12.92F : std::pow((part + 0.055F) / 1.055F, 2.4F);
    };
    return 0.2126F * linear(color.red) + 0.7152F * linear(color.green) +
           0.0722F * linear(color.blue);
}

float contrast(Color one, Color other) {
    const float first = luminance(one) + 0.05F;
    const float second = luminance(other) + 0.05F;
    return std::max(first, second) / std::min(first, second);
}

TEST(ThemeColors, WhatIsReadStandsOutFromItsGround) {
    struct Row {
        const char* name;
        Color Theme::*ink;
        std::vector<Color Theme::*> grounds;
        float ratio;
    };
    const std::vector<Color Theme::*> all{&Theme::window, &Theme::card, &Theme::control,
                                          &Theme::field};
    const Row rows[] = {
        {"text", &Theme::text, all, 4.5F},
        {"alert text", &Theme::text, {&Theme::alertSoft}, 4.5F},
        {"label", &Theme::label, all, 4.5F},
        {"caption", &Theme::caption, all, 4.5F},
        {"alert", &Theme::alert, {&Theme::window, &Theme::card, &Theme::alertSoft}, 4.5F},
        {"onAccent", &Theme::onAccent, {&Theme::accent}, 4.5F},
        {"tip", &Theme::tipText, {&Theme::tip}, 4.5F},
        {"glass", &Theme::glassText, {&Theme::glass}, 4.5F},
        {"glass caption", &Theme::glassCaption, {&Theme::glass}, 4.5F},
        {"glass zero", &Theme::glassZero, {&Theme::glass}, 4.5F},
        {"switch", &Theme::onSwitch, {&Theme::mute, &Theme::solo, &Theme::arm}, 4.5F},
        {"clip", &Theme::clipText, {&Theme::clip}, 4.5F},
        {"accent", &Theme::accent, {&Theme::window, &Theme::card, &Theme::field}, 3.0F},
        {"ticks", &Theme::strong, {&Theme::window, &Theme::card}, 3.0F},
        {"wave", &Theme::wave, {&Theme::field}, 3.0F},
    };
    for (const Appearance appearance : {Appearance::Light, Appearance::Dark}) {
        const Theme& colors = theme(appearance);
        for (const Row& row : rows) {
            for (const auto ground : row.grounds)
                EXPECT_GE(contrast(colors.*row.ink, colors.*ground), row.ratio) << row.name;
        }
        EXPECT_LE(contrast(colors.glassGhost, colors.glass), 1.35F);
        for (const SignalColors& zone : {colors.green, colors.amber, colors.red}) {
            EXPECT_GE(contrast(zone.low, colors.glass), 4.5F);
            EXPECT_GE(contrast(zone.low, zone.off), 3.0F);
        }
        using enum SystemColor;
        EXPECT_GE(contrast(systemColor(SelectedText, appearance),
                           systemColor(SelectedTextBackground, appearance)),
                  4.5F);
        EXPECT_GE(contrast(systemColor(DisabledLabel, appearance), colors.control), 2.0F);
    }
}

}  // namespace
}  // namespace veltra::testing
