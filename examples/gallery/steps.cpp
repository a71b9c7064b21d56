// SPDX-License-Identifier: MIT
// The control of docs/writing-a-control.md.
#include "../writing_a_control/step_row.h"
#include "sheets.h"
#include "user.h"

namespace veltra::gallery {

namespace {

Specimen row(std::string caption, bool isEnabled, std::function<void(Window&)> drive = {}) {
    return {std::move(caption),
            {304.0F, 24.0F},
            [isEnabled] {
                StepPattern pattern;
                for (const int step : {0, 3, 6, 10, 12})
                    pattern.set(step, true);
                auto made = std::make_unique<StepRow>(Rect{{}, {304.0F, 24.0F}});
                made->setPattern(pattern);
                made->setEnabled(isEnabled);
                return made;
            },
            std::move(drive)};
}

}  // namespace

Sheet stepSheet() {
    const auto focused = [](Window& window) {
        focus(window);
        const char16_t keys[] = {kRightArrowCharacter, kRightArrowCharacter};
        type(window, {keys, 2});
    };
    return {"steps",
            "A control of your own",
            {{row("at rest", true), row("focused, the cursor on step 3", true, focused)},
             {row("disabled", false)}}};
}

}  // namespace veltra::gallery
