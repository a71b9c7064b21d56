// SPDX-License-Identifier: MIT
#include "veltra/ui/theme.h"

#include "veltra/base/testing/prelude.h"
#include "veltra/ui/testing/sight.h"

#include <gmock/gmock.h>

namespace veltra::testing {
namespace {

// What controls draw themselves is measured on their pictures.
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
        EXPECT_GE(contrast(systemColor(SystemColor::DisabledLabel, appearance), colors.control),
                  2.0F);
    }
}

}  // namespace
}  // namespace veltra::testing
