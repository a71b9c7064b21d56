// SPDX-License-Identifier: MIT
#include "sheets.h"
#include "user.h"
#include "veltra/controls/keyboard/keyboard_toolbar_view.h"
#include "veltra/controls/keyboard/keyboard_view.h"
#include "veltra/controls/keyboard/keyboard_window.h"
#include "veltra/controls/keyboard/octave_picker_view.h"
#include "veltra/ui/button.h"
#include "veltra/ui/drawing.h"

namespace veltra::gallery {

namespace {

// The picker shows a range; the keyboard below it shows those keys.
class RangeFollower final : public View {
public:
    explicit RangeFollower(const Rect& frame) : View(frame) {
        const float width = frame.size.width;
        keys = &addSubview(
            std::make_unique<KeyboardView>(Rect{{12, 12}, {width - 24, frame.size.height - 55}}));
        auto& strip = addSubview(std::make_unique<KeyboardToolbarView>(
            Rect{{1, frame.size.height - 31}, {width - 2, 30}}));
        auto& sustain = strip.addSubview(
            std::make_unique<Button>(Rect{{12, 4}, {64, 22}}, "Sustain", ButtonCell::Kind::Toggle));
        sustain.setFont(themeFont(11.0F, FontWeight::Medium));
        sustain.setOn(true);
        const Size size = DfOctavePickerView::naturalSize(false);
        picker = &strip.addSubview(
            std::make_unique<DfOctavePickerView>(Rect{{width - size.width - 12, 2}, size}, false));
        picker->setTarget(this);
        picker->setAction(action<&RangeFollower::rangeChanged>());
        picker->setKeyRange({28, 15});
    }
    void rangeChanged() { keys->setKeyRange(picker->keyRange()); }
    void drawRect(Canvas& canvas, const Rect&) override {
        const Theme& colors = theme(effectiveAppearance());
        drawPlate(canvas, bounds(), 4.0F, colors.window, colors.edge);
    }

    KeyboardView* keys = nullptr;
    DfOctavePickerView* picker = nullptr;
};

Specimen picker(std::string caption, bool isLarge,
                const std::function<void(DfOctavePickerView&)>& set,
                std::function<void(Window&)> drive = {}, float margin = 8.0F) {
    const Size size = DfOctavePickerView::naturalSize(isLarge);
    return {std::move(caption), size,
            [=] {
                auto made = std::make_unique<DfOctavePickerView>(Rect{{}, size}, isLarge);
                made->setKeyRange({28, 15});
                if (set) set(*made);
                return made;
            },
            std::move(drive), margin};
}

Specimen keys(std::string caption, const std::function<void(KeyboardView&)>& set,
              std::function<void(Window&)> drive = {}) {
    const Size size{226.0F, 120.0F};
    return {std::move(caption), size,
            [=] {
                auto made = std::make_unique<KeyboardView>(Rect{{}, size});
                made->setKeyRange({35, 8});
                if (set) set(*made);
                return made;
            },
            std::move(drive)};
}

// The button that a window has for its strip.
Specimen stripButton(std::string caption, bool isOn, std::function<void(Window&)> drive = {}) {
    const Size size{52.0F, 40.0F};
    return {std::move(caption), size,
            [=] {
                DfKeyboardWindow window(Rect{{}, size});
                window.setContentView(std::make_unique<View>(Rect{{}, size}));
                window.df_addToolbarWidget();
                window.toolbarButton()->setOn(isOn);
                return window.takeContentView();
            },
            std::move(drive)};
}

}  // namespace

Sheet keyboardSheet() {
    // Where the range and the keys are, in the window of a specimen.
    constexpr Point kOnRange{250.0F, 28.0F};
    constexpr float kRoomForTip = 40.0F;
    constexpr Point kOnShortRange{182.0F + kRoomForTip, 12.0F + kRoomForTip};
    constexpr Point kOnKey{60.0F, 24.0F};
    const auto over = [](KeyRange range) {
        return [range](DfOctavePickerView& made) { made.setKeyRange(range); };
    };
    const auto overRange = [=](Window& window) { hover(window, kOnRange); };
    const auto dragged = [=](Window& window) {
        press(window, kOnShortRange);
        drag(window, kOnShortRange + Point{5.0F, 0.0F});
    };
    constexpr Point kOnButton{30.0F, 30.0F};
    const auto overButton = [=](Window& window) { hover(window, kOnButton); };
    const auto pressed = [=](Window& window) { press(window, kOnButton); };
    Specimen whole{"window with its strip",
                   {722.0F, 190.0F},
                   [] {
                       auto made = std::make_unique<RangeFollower>(Rect{{}, {722, 190}});
                       for (const std::int32_t note : {52, 55, 59, 66})
                           made->keys->setNotePressed(note, true);
                       return made;
                   },
                   {}};
    return {"keyboard",
            "Octave picker and keyboard",
            {{picker("large", true, {}), picker("short", false, over({17, 12}))},
             {picker("under the pointer", true, {}, overRange),
              picker("dragged", false, {}, dragged, kRoomForTip)},
             {picker("focused", true, over({23, 7}), focus),
              picker("disabled", false, [](auto& made) { made.setEnabled(false); })},
             {keys("at rest", {}),
              keys("under the pointer", {}, [=](Window& window) { hover(window, kOnKey); }),
              keys("played", {}, [=](Window& window) { press(window, kOnKey); }),
              keys("focused", {}, focus)},
             {keys("disabled", [](auto& made) { made.setEnabled(false); }), whole},
             {stripButton("strip hidden", false), stripButton("hover", false, overButton),
              stripButton("pressed", false, pressed), stripButton("focused", false, focus),
              stripButton("strip shown", true)}}};
}

}  // namespace veltra::gallery
