// SPDX-License-Identifier: MIT
#include "sheets.h"
#include "user.h"
#include "veltra/ui/button.h"
#include "veltra/ui/canvas.h"
#include "veltra/ui/theme.h"

namespace veltra::gallery {

namespace {

// Switches have a size of the host's, buttons are as large as they ask to be.
Specimen button(std::string caption, const char* title, ButtonCell::Kind kind,
                const std::function<void(Button&)>& set, std::function<void(Window&)> drive = {}) {
    const bool isToggle = kind == ButtonCell::Kind::Toggle;
    const auto make = [=] {
        auto made = std::make_unique<Button>(Rect{}, title, kind);
        made->setFont(isToggle ? themeFont(11.0F, FontWeight::SemiBold)
                               : themeFont(12.0F, FontWeight::Medium));
        if (set) set(*made);
        return made;
    };
    const Size size = isToggle ? Size{32.0F, 24.0F} : make()->buttonCell().cellSize();
    return {std::move(caption), size, make, std::move(drive)};
}

void drawPlaySymbol(Canvas& canvas, Point upperLeft, Color color) {
    const float down = canvas.isFlipped() ? 1.0F : -1.0F;
    Path path;
    path.moveTo(upperLeft + Point{4.0F, 2.5F * down});
    path.lineTo(upperLeft + Point{13.0F, 8.0F * down});
    path.lineTo(upperLeft + Point{4.0F, 13.5F * down});
    path.close();
    canvas.fillPath(path, color);
}

Specimen withSymbol(std::string caption, const char* title, ButtonCell::Style style, bool isOn,
                    std::function<void(Window&)> drive = {}) {
    const auto make = [=] {
        auto made = std::make_unique<Button>(Rect{}, title, ButtonCell::Kind::Toggle);
        made->buttonCell().setIcon(drawPlaySymbol);
        made->buttonCell().setStyle(style);
        made->setOn(isOn);
        made->setFont(themeFont(12.0F, FontWeight::Medium));
        return made;
    };
    return {std::move(caption), make()->buttonCell().cellSize(), make, std::move(drive)};
}

}  // namespace

Sheet buttonSheet() {
    using enum ButtonCell::Kind;
    using enum ButtonCell::Style;
    const auto on = [](std::optional<Color> color) {
        return [color](Button& made) {
            made.buttonCell().setOnColor(color);
            made.setOn(true);
        };
    };
    const auto over = [](Window& window) { hover(window, {10.0F, 10.0F}); };
    const auto styled = [](ButtonCell::Style style) {
        return [style](Button& made) { made.buttonCell().setStyle(style); };
    };
    const auto disabled = [](Button& made) { made.setEnabled(false); };
    const auto pressed = [](Window& window) { press(window, {10.0F, 10.0F}); };
    const Theme& colors = theme(Appearance::Dark);
    return {"buttons",
            "Buttons and switches",
            {{button("at rest", "Add files…", Momentary, {}),
              button("under the pointer", "Add files…", Momentary, {}, over),
              button("pressed", "Add files…", Momentary, {}, pressed),
              button("focused", "Add files…", Momentary, {}, focus),
              button("disabled", "Add files…", Momentary, disabled),
              button("primary", "Add files…", Momentary, styled(Primary)),
              button("dangerous", "Crash", Momentary, styled(Danger))},
             {button("off", "M", Toggle, {}), button("mute", "M", Toggle, on(colors.mute)),
              button("pressed", "M", Toggle, on(colors.mute), pressed),
              button("focused", "M", Toggle, on(colors.mute), focus),
              button("solo", "S", Toggle, on(colors.solo)), button("on", "Dim", Toggle, on({})),
              button("disabled", "M", Toggle, disabled)},
             {withSymbol("symbol", "", Plain, false), withSymbol("and title", "Play", Plain, false),
              withSymbol("on", "Play", Plain, true), withSymbol("mode off", "", Mode, false),
              withSymbol("mode on", "", Mode, true), withSymbol("bare", "", Bare, false),
              withSymbol("bare, hover", "", Bare, false, over)}}};
}

}  // namespace veltra::gallery
